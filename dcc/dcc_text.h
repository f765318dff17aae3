#pragma once
// The texts of a transfer's progress window, the own address, and the names of files
// offered and received. Pure functions.

#include <QString>
#include <QStringView>

#include <optional>

// "512 B", "1.50 KB", "3.20 MB", "1.00 GB": two decimals, truncated, never rounded up.
QString SizeText(qint64 bytes);
// "5 secs", "2 mins, 5 secs", "1 hrs, 2 mins, 5 secs".
QString DurationText(qint64 seconds);
// The size text of one second's bytes, then "/s".
QString RateText(qint64 bytesPerSecond);

// A dotted IPv4 address as a host-order number; nullopt for anything else.
std::optional<quint32> ParseDottedAddress(QStringView text);
QString DottedAddress(quint32 address);

// The name a file is offered under: its base name with every blank an underscore.
QString OfferedFileName(const QString& path);
// The name a received file gets inside the download folder: the offered name's last
// part (behind any "/" or "\"), made safe as log names are (views/safe_file_name.h).
QString SafeDownloadName(QStringView offered);
// "name(1).ext", "name(2).ext", ...: the first that does not exist in `folder`.
QString FreeFileName(const QString& folder, const QString& name);
