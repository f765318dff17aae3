#pragma once
// "Select destination path": the folders of the machine as a tree whose root, "My
// Device", is the file system's root. Folders are read when their branch is opened, so
// a large disk costs nothing until it is walked.

#include <QDialog>
#include <QString>

class QTreeWidget;
class QTreeWidgetItem;

class FolderBrowserDialog : public QDialog {
  Q_OBJECT

 public:
  // Opens the branches down to `initial` (as far as it exists) and selects it.
  FolderBrowserDialog(const QString& initial, int factor, QWidget* parent = nullptr);

  // The chosen folder ending in "/"; empty while none is chosen.
  QString ChosenPath() const;
  // Selects `path`, opening the branches to it; false when it cannot be reached (the
  // nearest folder on its way is selected then).
  bool SelectPath(const QString& path);
  QTreeWidget* Tree() const { return tree_; }

 private:
  void Fill(QTreeWidgetItem* item);

  QTreeWidget* tree_;
};
