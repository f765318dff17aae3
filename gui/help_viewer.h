#pragma once
// The help page inside the program, for devices where no web browser opens it: the page
// in a text browser over the whole window, and a Close button sized for a finger.

#include <QDialog>

class QTextBrowser;

class HelpViewer : public QDialog {
  Q_OBJECT

 public:
  HelpViewer(const QString& file, int factor, QWidget* parent);

  QTextBrowser* Browser() const { return browser_; }

 private:
  QTextBrowser* browser_;
};

// Shows `file` in the desktop's browser; when none opens it, in the window's own viewer
// (one at a time: a second call brings it to the front). Returns that viewer, if any.
HelpViewer* OpenHelpPage(const QString& file, int factor, QWidget* window);
