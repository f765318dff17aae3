#include "support/irssi_peer.h"

#include "support/test_app.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Auto-get for our offers, resume on request, no logs, no questions; every line in the
// one window the terminal shows.
QByteArray Config(const QString& nick, int port, const QString& downloads) {
  return QStringLiteral(
             "servers = ( { address = \"127.0.0.1\"; chatnet = \"test\"; port = \"%1\"; use_tls = \"no\";"
             " autoconnect = \"yes\"; } );\n"
             "chatnets = { test = { type = \"IRC\"; }; };\n"
             "settings = {\n"
             "  core = { real_name = \"irssi\"; user_name = \"%2\"; nick = \"%2\"; settings_autosave = \"no\"; };\n"
             "  \"fe-common/core\" = { autolog = \"no\"; autocreate_windows = \"no\"; };\n"
             "  \"irc/dcc\" = { dcc_autoget = \"yes\"; dcc_autoget_masks = \"\"; dcc_autoget_max_size = \"0\";"
             " dcc_download_path = \"%3\"; dcc_file_create_mode = \"644\"; dcc_autoresume = \"no\";"
             " dcc_autorename = \"no\"; dcc_autochat_masks = \"\"; };\n"
             "};\n")
      .arg(port)
      .arg(nick, downloads)
      .toUtf8();
}

}  // namespace

IrssiPeer::IrssiPeer(const QString& nick, int serverPort) : nick_(nick), port_(serverPort) {}

IrssiPeer::~IrssiPeer() {
  notifier_.reset();
  if (pid_ > 0) {
    kill(pid_, SIGTERM);
    for (int i = 0; i < 200 && waitpid(pid_, nullptr, WNOHANG) == 0; ++i) usleep(10000);
    if (waitpid(pid_, nullptr, WNOHANG) == 0) {
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
  }
  if (terminal_ >= 0) close(terminal_);
}

bool IrssiPeer::Start() {
  const QString irssi = QStandardPaths::findExecutable(QStringLiteral("irssi"));
  if (irssi.isEmpty() || !home_.isValid()) return false;
  QDir().mkpath(Downloads());
  QFile config(home_.path() + QStringLiteral("/config"));
  if (!config.open(QIODevice::WriteOnly)) return false;
  config.write(Config(nick_, port_, Downloads()));
  config.close();
  const QByteArray program = irssi.toLocal8Bit();
  const QByteArray homeArgument = "--home=" + home_.path().toLocal8Bit();
  const QByteArray homeVariable = home_.path().toLocal8Bit();
  winsize size{40, 120, 0, 0};
  pid_ = forkpty(&terminal_, nullptr, nullptr, &size);
  if (pid_ < 0) return false;
  if (pid_ == 0) {
    setenv("HOME", homeVariable.constData(), 1);
    setenv("TERM", "xterm", 1);
    execl(program.constData(), program.constData(), homeArgument.constData(), static_cast<char*>(nullptr));
    _exit(127);
  }
  fcntl(terminal_, F_SETFL, fcntl(terminal_, F_GETFL) | O_NONBLOCK);
  notifier_ = std::make_unique<QSocketNotifier>(terminal_, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { Drain(); });
  return true;
}

// irssi blocks once the terminal's buffer is full: its output is read as it comes.
void IrssiPeer::Drain() {
  char buffer[8192];
  ssize_t n;
  while ((n = read(terminal_, buffer, sizeof buffer)) > 0) screen_.append(buffer, n);
  if (n == 0 || (n < 0 && errno != EAGAIN && errno != EINTR)) notifier_->setEnabled(false);
}

void IrssiPeer::Type(const QByteArray& line) {
  const QByteArray bytes = line + '\r';
  [[maybe_unused]] const ssize_t written = write(terminal_, bytes.constData(), size_t(bytes.size()));
}
