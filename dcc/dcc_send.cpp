// Files we offer: the file is opened and announced, the peer connects within the wait,
// and a RESUME from it moves the starting position before it does.

#include "client/shell.h"
#include "dcc/dcc_engine.h"
#include "dcc/dcc_link.h"
#include "dcc/dcc_text.h"
#include "dcc/dcc_transfer.h"
#include "settings/settings_paths.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int kDefaultPacket = 4096;

// "~/x" is in the home folder; any other relative name in the download folder, where a
// pocket device keeps its files.
QString ResolveFile(const SettingsStore& settings, const QString& file) {
  if (file.startsWith(u"~/")) return QDir::homePath() + file.mid(1);
  return QDir(GetDccDir(settings)).absoluteFilePath(file);
}

}  // namespace

void DccEngine::OpenSendDialog(const QString& nick) {
  if (const std::optional<DccSendChoice> choice = shell_.AskDccSend(nick))
    OfferFile(choice->nick, choice->file, choice->packetSize);
}

void DccEngine::OfferFile(const QString& nick, const QString& file) {
  OfferFile(nick, file, kDefaultPacket);
}

void DccEngine::OfferFile(const QString& nick, const QString& file, int packetSize) {
  const QString path = ResolveFile(settings_, file);
  DccTransfer& transfer = NewTransfer(OfferedFileName(path), true);
  transfer.nick = nick;
  transfer.fileName = OfferedFileName(path);
  transfer.folder = QFileInfo(path).absolutePath() + u'/';
  transfer.localName = QFileInfo(path).fileName();
  transfer.packetSize = packetSize;
  transfer.file = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
  struct stat info {};
  if (transfer.file < 0 || fstat(transfer.file, &info) != 0 || !S_ISREG(info.st_mode)) {
    const QString why = QString::fromUtf16(errno == ENOENT && !QFileInfo(transfer.folder).isDir()
                                               ? kStatusPathNotFound : kStatusUnableToOpen);
    return FailTransfer(transfer, why);
  }
  transfer.size = info.st_size;
  DccRequest offer;
  offer.type = DccRequestType::Send;
  offer.fileName = transfer.fileName;
  offer.address = OwnAddress();
  offer.size = transfer.size;
  PumpPlan plan;
  plan.listener = Listen(offer.port);
  if (plan.listener < 0) return FailTransfer(transfer, QString::fromUtf16(kStatusConnectionError));
  transfer.port = offer.port;
  transfer.address = DottedAddress(offer.address);
  link_.SendDccRequest(nick, offer);
  plan.linkTimeout = peerTimeout;
  plan.stallTimeout = stallTimeout;
  plan.lastAckTimeout = lastAckTimeout;
  transfer.Start(plan);
}

// The peer has part of the file and asks for the rest. Only a position inside the file
// is agreed to; anything else would send nothing, or read past the end.
void DccEngine::HandleResumeRequest(const QString& nick, const DccRequest& request) {
  DccTransfer* transfer = FindWaiting(true, request.port, request.token);
  if (!transfer || transfer->nick.compare(nick, Qt::CaseInsensitive) != 0) return;
  if (request.position >= transfer->size)
    return Refuse(nick, request, u"position "_s + QString::number(request.position) +
                                     u" is not below the file size "_s + QString::number(transfer->size));
  transfer->SetPosition(request.position);
  DccRequest answer = request;
  answer.type = DccRequestType::Accept;
  link_.SendDccRequest(nick, answer);
}
