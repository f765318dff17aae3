// Files offered to us. A received file never replaces anything unless the user chose
// "Overwrite": a new file is created only where none exists, and the automatic policy
// resumes a shorter file of the same name or picks a free name.

#include "client/shell.h"
#include "dcc/dcc_engine.h"
#include "dcc/dcc_link.h"
#include "dcc/dcc_text.h"
#include "dcc/dcc_transfer.h"
#include "settings/settings_flags.h"
#include "settings/settings_paths.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

enum Policy { kAsk = 0, kAuto = 1, kIgnore = 2 };

}  // namespace

void DccEngine::ReceiveOffer(const QString& nick, const DccRequest& request) {
  if (!request.IsPassive() && (request.address == 0 || request.port == 0))
    return Refuse(nick, request, u"no address or port"_s);
  const int policy = GetNibble(settings_, u"DCC", kDccSendPolicyShift);
  if (policy == kIgnore) return IgnoreSender(nick);
  QString path;
  FileMode mode = FileMode::New;
  if (policy == kAuto) {
    AutoDestination(request, path, mode);
  } else if (!AskWhereToReceive(nick, request, path, mode)) {
    return;
  }
  StartReceive(nick, request, path, mode);
}

bool DccEngine::AskWhereToReceive(const QString& nick, const DccRequest& request, QString& path,
                                  FileMode& mode) {
  path = GetDccDir(settings_) + SafeDownloadName(request.fileName);
  switch (shell_.AskDccReceive(nick, path)) {
    case DccChoice::Accept: break;
    case DccChoice::Ignore: IgnoreSender(nick); return false;
    default: return false;
  }
  const QFileInfo existing(path);
  if (!existing.exists() && !existing.isSymLink()) return true;
  const bool canResume = existing.isFile() && existing.size() < request.size;
  switch (shell_.AskDccExisting(path, canResume)) {
    case DccChoice::Resume: mode = FileMode::Resume; return canResume;
    case DccChoice::Overwrite: mode = FileMode::Overwrite; return true;
    default: return false;
  }
}

void DccEngine::AutoDestination(const DccRequest& request, QString& path, FileMode& mode) {
  const QString folder = GetDccDir(settings_);
  const QString name = SafeDownloadName(request.fileName);
  const QFileInfo existing(folder + name);
  mode = FileMode::New;
  path = folder + name;
  if (!existing.exists() && !existing.isSymLink()) return;
  if (existing.isFile() && !existing.isSymLink() && existing.size() < request.size) {
    mode = FileMode::Resume;
    return;
  }
  path = folder + FreeFileName(folder, name);
}

void DccEngine::StartReceive(const QString& nick, const DccRequest& request, const QString& path,
                             FileMode mode) {
  const QFileInfo info(path);
  DccTransfer& transfer = NewTransfer(info.fileName(), false);
  transfer.nick = nick;
  transfer.peerAddress = request.address;
  transfer.address = DottedAddress(request.address);
  transfer.port = request.port;
  transfer.token = request.token;
  transfer.fileName = request.fileName;
  transfer.folder = info.absolutePath() + u'/';
  transfer.localName = info.fileName();
  transfer.size = request.size;
  if (!OpenDestination(transfer, path, mode)) return;
  if (mode != FileMode::Resume) return RunReceive(transfer);
  struct stat existing {};
  fstat(transfer.file, &existing);
  transfer.resumeFrom = existing.st_size;
  transfer.SetPosition(existing.st_size);
  transfer.SetStatus(QString::fromUtf16(kStatusWaitingResume));
  DccRequest resume;
  resume.type = DccRequestType::Resume;
  resume.fileName = request.fileName;
  resume.port = request.port;
  resume.position = existing.st_size;
  resume.token = request.token;
  link_.SendDccRequest(nick, resume);
}

// O_EXCL for a new file: if one appeared since we looked, it is not ours to replace.
// O_NOFOLLOW: a link planted in the download folder does not lead elsewhere.
bool DccEngine::OpenDestination(DccTransfer& transfer, const QString& path, FileMode mode) {
  int flags = O_WRONLY | O_CLOEXEC | O_NOFOLLOW;
  if (mode == FileMode::New) flags |= O_CREAT | O_EXCL;
  if (mode == FileMode::Overwrite) flags |= O_CREAT | O_TRUNC;
  transfer.file = ::open(QFile::encodeName(path).constData(), flags, 0644);
  transfer.createdFile = mode == FileMode::New;
  if (transfer.file >= 0) return true;
  const int error = errno;
  if (error == ENOENT || error == ENOTDIR) {
    FailTransfer(transfer, QString::fromUtf16(kStatusPathNotFound));
  } else if (error == EEXIST || error == EACCES || error == EISDIR || error == ELOOP || error == EROFS) {
    FailTransfer(transfer, QString::fromUtf16(kStatusUnableToOpen));
  } else {
    FailTransfer(transfer, u"File error: "_s + QString::number(error));
  }
  return false;
}

void DccEngine::FailTransfer(DccTransfer& transfer, const QString& why) {
  transfer.Fail(why);
  shell_.ShowMessage(u"Error"_s, why);
}

// The sender agreed to go on from `position`; it may be lower than what we have, never
// higher, or the file would get a hole.
void DccEngine::HandleAcceptReply(const QString& nick, const DccRequest& request) {
  DccTransfer* transfer = FindWaiting(false, request.port, request.token);
  if (!transfer || transfer->resumeFrom < 0 || transfer->nick.compare(nick, Qt::CaseInsensitive) != 0)
    return;
  if (request.position > transfer->resumeFrom)
    return Refuse(nick, request, u"position "_s + QString::number(request.position) +
                                     u" is beyond the file's "_s + QString::number(transfer->resumeFrom));
  transfer->resumeFrom = -1;
  transfer->SetPosition(request.position);
  transfer->SetStatus(QString());
  RunReceive(*transfer);
}

// A passive offer asks us to listen: we answer with our own address, port and its token.
void DccEngine::RunReceive(DccTransfer& transfer) {
  PumpPlan plan;
  plan.address = transfer.peerAddress;
  plan.port = transfer.port;
  plan.linkTimeout = peerTimeout;
  plan.stallTimeout = stallTimeout;
  plan.lastAckTimeout = lastAckTimeout;
  if (transfer.port == 0) {
    DccRequest answer;
    answer.type = DccRequestType::Send;
    answer.fileName = transfer.fileName;
    answer.address = OwnAddress();
    answer.size = transfer.size;
    answer.token = transfer.token;
    plan.listener = Listen(answer.port);
    if (plan.listener < 0) return FailTransfer(transfer, QString::fromUtf16(kStatusConnectionError));
    link_.SendDccRequest(transfer.nick, answer);
  }
  transfer.Start(plan);
}
