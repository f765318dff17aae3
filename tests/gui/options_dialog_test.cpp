// The "Settings" dialog as a user meets it: Options in the menu, every control of a page
// changed, OK, and what reached settings.reg; Cancel; the server list's Add/Edit/Delete
// with servers.txt on disk; the Info lists; the Enable boxes; screenshots.

#include "gui/folder_browser_dialog.h"
#include "gui/menu_bar_widget.h"
#include "gui/options_dialog.h"
#include "gui/server_dialog.h"
#include "gui/touch_targets_widget.h"
#include "commands/command_ids.h"
#include "net/server_list.h"
#include "support/file_bytes.h"
#include "support/test_app.h"
#include "support/window_client.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabWidget>
#include <QTimer>
#include <QTreeWidget>
#include <gtest/gtest.h>

#include <deque>
#include <variant>

using namespace Qt::StringLiterals;

namespace {

using Answer = std::function<void(QDialog*)>;

// The nth widget of type W whose text is `text`.
template <class W>
W* Button(QWidget* root, const QString& text, int nth = 0) {
  for (W* w : root->findChildren<W*>())
    if (w->text() == text && nth-- == 0) return w;
  ADD_FAILURE() << "no " << text.toStdString();
  return nullptr;
}

// The field or combo a label names.
template <class W>
W* Labelled(QWidget* root, const QString& text) {
  for (QLabel* label : root->findChildren<QLabel*>())
    if (label->text() == text) return qobject_cast<W*>(label->buddy());
  ADD_FAILURE() << "no " << text.toStdString();
  return nullptr;
}

// One inner tab of the Info page: 0 ignores, 1 highlights, 2 notify.
QWidget* ListTab(QWidget* page, int list) { return page->findChild<QTabWidget*>()->widget(list); }

QString MessageText(QDialog* dialog) { return static_cast<QMessageBox*>(dialog)->text(); }

enum Page { kConnection = 0, kGeneral = 1, kDcc = 5, kInfo = 6, kFiles = 7 };

class OptionsDialogTest : public ::testing::Test, protected WindowClient {
 protected:
  OptionsDialogTest() {
    window->show();
    window->Shell().SetBeforeExecHook([this](QDialog* dialog) {
      titles << dialog->windowTitle();
      if (answers.empty()) return QTimer::singleShot(0, dialog, &QDialog::reject);
      Answer answer = std::move(answers.front());
      answers.pop_front();
      QTimer::singleShot(0, dialog, [answer, dialog] {
        answer(dialog);
        if (dialog->isVisible()) dialog->reject();
      });
    });
  }
  // Opens the dialog from the menu's "Options"; `use` acts on the page, then OK or Cancel.
  void RunOptions(int page, const std::function<void(QWidget*)>& use, bool ok = true) {
    answers.push_front([this, page, use, ok](QDialog* dialog) {
      EXPECT_TRUE(window->Context().optionsDialogOpen);
      EXPECT_FALSE(window->Menu()->isVisible());
      auto* options = static_cast<OptionsDialog*>(dialog);
      options->Tabs()->setCurrentIndex(page);
      use(options->Page(page));
      Button<QPushButton>(dialog, ok ? u"OK"_s : u"Cancel"_s)->click();
    });
    QAction* item = nullptr;
    for (QAction* action : window->Menu()->CommandMenu()->actions())
      if (action->text() == u"Options"_s && action->data().toInt() == kCmdOptions) item = action;
    ASSERT_TRUE(item);
    item->trigger();
    EXPECT_FALSE(window->Context().optionsDialogOpen);
    EXPECT_TRUE(window->Menu()->isVisible());
  }
  static Answer Press(const QString& button) {
    return [button](QDialog* d) { Button<QPushButton>(d, button)->click(); };
  }
  QString ServersFile() const { return ServerListPath(settings); }

  std::deque<Answer> answers;
  QStringList titles;
};

struct Stored {
  const char16_t* name;
  std::variant<qint32, QString> value;
};

struct PageCase {
  const char* name;
  int page;
  std::function<void(QWidget*, std::deque<Answer>&, const QString& home)> change;
  std::vector<Stored> expected;  // "<home>" in a text stands for the home folder
};

class PageSaveTest : public OptionsDialogTest, public ::testing::WithParamInterface<PageCase> {};

// Every control of the page is changed and what reaches the file is read back by a
// store of its own: the type and every bit.
TEST_P(PageSaveTest, OkWritesEveryControlToTheFile) {
  WriteBytes(ServersFile(), "Libera\tirc.libera.chat\t6667\t\r\nOFTC\tirc.oftc.net\t6697\tpw\r\n"
                            "Libera\tirc.eu.libera.chat\t6660-6669\t\r\n");
  settings.SetString(u"ignore", u"alice ", 2002);
  QDir(home.path()).mkpath(u"chosen"_s);
  RunOptions(GetParam().page, [&](QWidget* page) { GetParam().change(page, answers, home.path()); });
  SettingsStore onDisk(home.path());
  for (const Stored& s : GetParam().expected) {
    SCOPED_TRACE(QString::fromUtf16(s.name).toStdString());
    if (const qint32* dword = std::get_if<qint32>(&s.value)) {
      EXPECT_EQ(onDisk.TypeOf(s.name), SettingType::Dword);
      EXPECT_EQ(static_cast<quint32>(onDisk.GetDword(s.name)), static_cast<quint32>(*dword));
    } else {
      QString text;
      EXPECT_TRUE(onDisk.GetString(s.name, text, 2002));
      EXPECT_EQ(text, QString(std::get<QString>(s.value)).replace(u"<home>"_s, home.path()));
    }
  }
  EXPECT_TRUE(answers.empty());
}

void Toggle(QWidget* page, std::initializer_list<const char16_t*> labels) {
  for (const char16_t* label : labels) Button<QCheckBox>(page, QString::fromUtf16(label))->click();
}

const PageCase kPageCases[] = {
    {"Connection", kConnection,
     [](QWidget* page, std::deque<Answer>&, const QString&) {
       auto* networks = Labelled<QComboBox>(page, u"Network:"_s);
       ASSERT_EQ(networks->count(), 2);
       networks->setCurrentIndex(0);
       emit networks->activated(0);  // Libera: its two servers
       QComboBox* servers = page->findChildren<QComboBox*>()[1];
       ASSERT_EQ(servers->count(), 2);
       servers->setCurrentIndex(1);
       Labelled<QLineEdit>(page, u"Nick Name"_s)->setText(u"tolvuser"_s);
       Labelled<QLineEdit>(page, u"Alter Nick"_s)->setText(QString(70, u'a'));
       Labelled<QLineEdit>(page, u"Fullname"_s)->setText(u"Tolv User"_s);
       Labelled<QLineEdit>(page, u"Email"_s)->setText(u"user@example.org"_s);
       Toggle(page, {u"Invisible"});
     },
     {{u"server", 2}, {u"nick", u"tolvuser"_s}, {u"alternick", QString(59, u'a')}, {u"fullname", u"Tolv User"_s},
      {u"email", u"user@example.org"_s}, {u"Options", 0x180}}},  // the window's tests start without splash
    {"Options", kGeneral,
     [](QWidget* page, std::deque<Answer>&, const QString&) {
       Toggle(page, {u"Short Joins/Parts", u"Show addresses", u"Rejoin after kick", u"Rejoin on connect",
                     u"Keep chan. open", u"Show requests", u"Hide Ping?Pong!", u"Splash at startup", u"Skip MOTD",
                     u"Reconnect"});
       Labelled<QLineEdit>(page, u"User ID"_s)->setText(u"me"_s);
       Labelled<QLineEdit>(page, u"System"_s)->setText(u"LINUX-SYSTEM-16"_s);
       Labelled<QLineEdit>(page, u"Port"_s)->setText(u"12ab"_s);
       Toggle(page, {u"Enable"});  // greys its group only, as every "Enable" box does
       EXPECT_EQ(Labelled<QLineEdit>(page, u"User ID"_s)->isEnabled() + Button<QCheckBox>(page, u"Reconnect"_s)->isEnabled(), 1);
     },
     {{u"Options", 0x0100067F}, {u"IdUser", u"me"_s}, {u"IdSystem", u"LINUX-SYSTEM-1"_s}, {u"IdPort", 12}}},
    {"DCC", kDcc,
     [](QWidget* page, std::deque<Answer>& answers, const QString& home) {
       Button<QRadioButton>(page, u"Auto"_s, 0)->click();    // Chat:
       Button<QRadioButton>(page, u"Ignore"_s, 1)->click();  // Send:
       Button<QRadioButton>(page, u"Normal"_s)->click();
       Toggle(page, {u"Auto"});
       Labelled<QLineEdit>(page, u"Address:"_s)->setText(u"10.0.0.7"_s);
       answers.push_back([home](QDialog* d) {
         auto* browser = static_cast<FolderBrowserDialog*>(d);
         EXPECT_EQ(browser->Tree()->topLevelItem(0)->text(0), u"My Device"_s);
         EXPECT_TRUE(browser->SelectPath(home + u"/chosen"_s));
         Button<QPushButton>(d, u"OK"_s)->click();
       });
       Button<QPushButton>(page, u"..."_s)->click();
     },
     {{u"DCC", 0x21}, {u"DCCpath", u"<home>/chosen/"_s}, {u"LocalHost", u"10.0.0.7"_s}}},
    {"Info", kInfo,
     [](QWidget* page, std::deque<Answer>& answers, const QString&) {
       Toggle(page, {u"Timestamps"});
       Labelled<QLineEdit>(page, u"Part msg"_s)->setText(u"bye"_s);
       Labelled<QLineEdit>(page, u"Quit msg"_s)->setText(u"gone"_s);
       for (int list : {0, 1, 2}) Button<QCheckBox>(ListTab(page, list), u"Enable"_s)->click();
       Toggle(page, {u"/Whois"});
       for (const QString& nick : {u"Bob"_s, u"ALICE"_s}) {
         answers.push_back([nick](QDialog* d) {
           d->findChild<QLineEdit*>()->setText(nick);
           Button<QPushButton>(d, u"OK"_s)->click();
         });
         Button<QPushButton>(ListTab(page, 0), u"Add"_s)->click();
       }
       answers.push_back([](QDialog* d) {
         d->findChild<QLineEdit*>()->setText(u"carol"_s);
         Button<QPushButton>(d, u"OK"_s)->click();
       });
       Button<QPushButton>(ListTab(page, 2), u"Add"_s)->click();
     },
     {{u"tstamps", 1}, {u"partmsg", u"bye"_s}, {u"quitmsg", u"gone"_s}, {u"ignore", u"alice Bob "_s},
      {u"hlights", u""_s}, {u"notify", u"carol "_s}, {u"en_ignore", 1}, {u"en_hlights", 1}, {u"en_notify", 1},
      {u"not_whois", 1}}},
    {"Files", kFiles,
     [](QWidget* page, std::deque<Answer>&, const QString&) {
       Toggle(page, {u"Channels", u"Priv", u"Status", u"DCC Chat", u"Self-teaching", u"Backup on startup"});
       Labelled<QComboBox>(page, u"No. of whispers"_s)->setCurrentIndex(4);
       Labelled<QLineEdit>(page, u"Destination path:"_s)->setText(u"/var/log/tolv/"_s);
       Toggle(page, {u"Enable whispers"});
       EXPECT_EQ(Labelled<QComboBox>(page, u"No. of whispers"_s)->isEnabled() + Button<QCheckBox>(page, u"Priv"_s)->isEnabled(), 1);
     },
     {{u"Files", 0x560F}, {u"logpath", u"/var/log/tolv/"_s}}},
};

INSTANTIATE_TEST_SUITE_P(Pages, PageSaveTest, ::testing::ValuesIn(kPageCases),
                         [](const auto& info) { return std::string(info.param.name); });

// Cancel leaves the file as it was, byte for byte.
TEST_F(OptionsDialogTest, CancelWritesNothing) {
  settings.SetDword(u"server", 0);
  const QByteArray before = ReadBytes(settings.FilePath());
  RunOptions(kGeneral, [](QWidget* page) {
    Toggle(page, {u"Reconnect"});
    Labelled<QLineEdit>(page, u"Port"_s)->setText(u"7"_s);
  }, false);
  EXPECT_EQ(ReadBytes(settings.FilePath()), before);
}

// Add warns until the entry is complete; Add, Edit and Delete write servers.txt at once,
// and Cancel of the dialog takes none of it back.
TEST_F(OptionsDialogTest, ServerListChangesReachTheFileAtOnce) {
  WriteBytes(ServersFile(), "OFTC\tirc.oftc.net\t6697\t\r\n");
  settings.SetDword(u"server", 0);
  const auto fill = [](QStringList texts) {
    return [texts](QDialog* d) {
      auto* server = static_cast<ServerDialog*>(d);
      EXPECT_EQ(server->PasswordField()->echoMode(), QLineEdit::Password);
      QLineEdit* fields[] = {server->NetworkField(), server->ServerField(), server->PortsField(), server->PasswordField()};
      for (int i = 0; i < 4; ++i) fields[i]->setText(texts[i]);
      Button<QPushButton>(d, u"OK"_s)->click();
    };
  };
  QStringList warnings;
  RunOptions(kConnection, [&](QWidget* page) {
    answers.push_back([&](QDialog* d) {
      answers.push_front([&](QDialog* box) {
        warnings << box->windowTitle() + u'|' + MessageText(box);
        Button<QPushButton>(box, u"OK"_s)->click();
      });
      fill({u"Libera"_s, u"irc.libera.chat"_s, {}, {}})(d);  // warned, and the dialog stays
      fill({u"Libera"_s, u"irc.libera.chat"_s, u"6667,7000"_s, {}})(d);
    });
    Button<QPushButton>(page, u"Add"_s)->click();
    EXPECT_EQ(ReadBytes(ServersFile()), "OFTC\tirc.oftc.net\t6697\t\r\nLibera\tirc.libera.chat\t6667,7000\t\r\n");
    auto* networks = Labelled<QComboBox>(page, u"Network:"_s);
    EXPECT_EQ(networks->currentText(), u"OFTC"_s);  // the selection stays
    networks->setCurrentIndex(1);
    emit networks->activated(1);
    answers.push_back([&](QDialog* d) {
      EXPECT_EQ(static_cast<ServerDialog*>(d)->ServerField()->text(), u"irc.libera.chat"_s);
      fill({u"Libera"_s, u"irc.eu.libera.chat"_s, u"6697"_s, u"secret"_s})(d);
    });
    Button<QPushButton>(page, u"Edit"_s)->click();
    EXPECT_EQ(ReadBytes(ServersFile()), "OFTC\tirc.oftc.net\t6697\t\r\nLibera\tirc.eu.libera.chat\t6697\tsecret\r\n");
    answers.push_back(Press(u"No"_s));
    Button<QPushButton>(page, u"Delete"_s)->click();
    answers.push_back(Press(u"Yes"_s));
    Button<QPushButton>(page, u"Delete"_s)->click();
    EXPECT_EQ(networks->count(), 1);
    EXPECT_EQ(networks->currentIndex(), -1);
  }, false);
  EXPECT_EQ(warnings, QStringList{u"Warning|You must fill in network,\r\nurl and port fields!"_s});
  EXPECT_EQ(titles, QStringList({u"Settings"_s, u"Server"_s, u"Warning"_s, u"Server"_s, u"Delete server"_s,
                                 u"Delete server"_s}));
  EXPECT_EQ(ReadBytes(ServersFile()), "OFTC\tirc.oftc.net\t6697\t\r\n");
  EXPECT_EQ(settings.GetDword(u"server"), 0);
}

// A list's "Enable" greys its tab; Del asks first and then selects the first entry; the
// reloaded notify list follows OK.
TEST_F(OptionsDialogTest, InfoListDeleteAsksAndTheNotifyListIsReloaded) {
  settings.SetString(u"notify", u"alice bob carol ", 2002);
  settings.SetDword(u"en_notify", 1);
  RunOptions(kInfo, [&](QWidget* page) {
    EXPECT_FALSE(Button<QPushButton>(ListTab(page, 0), u"Del"_s)->isEnabled());  // "en_ignore" is off
    EXPECT_TRUE(Button<QCheckBox>(page, u"/Whois"_s)->isEnabled());
    QComboBox* notify = ListTab(page, 2)->findChild<QComboBox*>();
    notify->setCurrentIndex(1);
    answers.push_back(Press(u"No"_s));
    Button<QPushButton>(ListTab(page, 2), u"Del"_s)->click();
    EXPECT_EQ(notify->count(), 3);
    answers.push_back(Press(u"Yes"_s));
    Button<QPushButton>(ListTab(page, 2), u"Del"_s)->click();
    EXPECT_EQ(notify->count(), 2);
    EXPECT_EQ(notify->currentText(), u"alice"_s);
  });
  EXPECT_EQ(titles.mid(1), QStringList({u"Delete from list"_s, u"Delete from list"_s}));
  ASSERT_EQ(window->Context().notify.Entries().size(), 2u);
  EXPECT_EQ(window->Context().notify.Entries()[1].nick, u"carol"_s);
}

// Every page of ours and the Server dialog at the three pocket sizes, for a person to
// look at; the pages scroll instead of squeezing what a finger taps.
TEST_F(OptionsDialogTest, Screenshots) {
  QDir().mkpath(QStringLiteral(TOLV_SCREENSHOT_DIR));
  WriteBytes(ServersFile(), "Libera\tirc.libera.chat\t6667\t\r\n");
  settings.SetDword(u"server", 0);
  settings.SetString(u"notify", u"alice bob ", 2002);
  const auto save = [](QWidget* w, const QString& name, QSize size) {
    EXPECT_TRUE(w->grab().save(u"%1/%2_%3x%4.png"_s.arg(QStringLiteral(TOLV_SCREENSHOT_DIR), name)
                                   .arg(size.width()).arg(size.height())));
  };
  for (const QSize size : {QSize(240, 320), QSize(320, 240), QSize(480, 640)}) {
    window->resize(size);
    Settle();
    const int factor = window->ScaleFactor();
    OptionsDialog dialog(window->Context(), window->Shell(), factor);
    dialog.resize(size);
    dialog.show();
    for (int page : {kConnection, kGeneral, kDcc, kInfo, kFiles}) {
      dialog.Tabs()->setCurrentIndex(page);
      Settle();
      for (QWidget* w : dialog.Page(page)->findChildren<QWidget*>())
        if (qobject_cast<QAbstractButton*>(w) || qobject_cast<QLineEdit*>(w) || qobject_cast<QComboBox*>(w)) {
          EXPECT_GE(w->height(), 20 * factor) << page;
        }
      save(&dialog, u"options_"_s + dialog.Tabs()->tabText(page).toLower(), size);
      auto* area = static_cast<QScrollArea*>(dialog.Tabs()->currentWidget());
      area->verticalScrollBar()->setValue(area->verticalScrollBar()->maximum());
      save(&dialog, u"options_end_"_s + dialog.Tabs()->tabText(page).toLower(), size);
    }
    ServerDialog server({u"Libera"_s, u"irc.libera.chat"_s, u"6667"_s, u"pw"_s}, false, window->Context(),
                        window->Shell());
    FitForTouch(&server, factor);
    server.resize(size);
    server.show();
    Settle();
    save(&server, u"server_dialog"_s, size);
  }
}

}  // namespace
