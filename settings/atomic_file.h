#pragma once
// Replacing a file so that a crash at any moment leaves either the old or the new
// content, never a mix: write a temporary file beside it, fsync, rename over it.

#include <QByteArray>
#include <QString>

// `mode` applies to the new file (e.g. 0600 for files holding passwords).
bool WriteFileAtomically(const QString& path, const QByteArray& content, int mode = 0644);
