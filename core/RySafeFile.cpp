#include "RySafeFile.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr mode_t anybody =
        S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH; // less the umask

/// Where links lead in the end, also where nothing is yet.
QString withoutLinks(const QString &fileName)
{
    constexpr int mostLinks = 40; // that the system follows; more go in a circle
    QString place = QFileInfo(fileName).absoluteFilePath();
    for (int i = 0; i < mostLinks && QFileInfo(place).isSymLink(); ++i)
        place = QFileInfo(place).symLinkTarget();
    return place;
}

QString explained(int error, const QString &place)
{
    const QString folder = QFileInfo(place).absolutePath();
    if (error == ENOSPC)
        return u"the disk with %1 is full"_s.arg(folder);
    if (error == EDQUOT)
        return u"what may be stored on the disk with %1 is used up"_s.arg(folder);
    return qt_error_string(error);
}

/// Another one at each call.
QString nameBeside(const QString &place)
{
    QString name = place + u'.';
    for (int i = 0; i < 6; ++i)
        name += QChar(u'A' + QRandomGenerator::global()->bounded(26));
    return name;
}

/// Calls a system function with names beside the place until one was free; -1 for another error.
template <typename Call>
int withFreeName(const QString &place, QString &name, const Call &call)
{
    constexpr int tries = 100;
    int result = -1;
    for (int i = 0; i < tries && result < 0; ++i) {
        name = nameBeside(place);
        result = call(QFile::encodeName(name).constData());
        if (result < 0 && errno != EEXIST)
            break;
    }
    if (result < 0) {
        const int error = errno;
        name.clear();
        errno = error;
    }
    return result;
}

#ifdef O_TMPFILE
QByteArray ownPathOf(int file)
{
    return "/proc/self/fd/" + QByteArray::number(file);
}

/// -1 where there is no such thing.
int openNameless(const QString &place)
{
    const QByteArray folder = QFile::encodeName(QFileInfo(place).absolutePath());
    const int file = ::open(folder.constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, anybody);
    if (file >= 0 && access(ownPathOf(file).constData(), F_OK) != 0) {
        ::close(file); // nothing could give it a name
        return -1;
    }
    return file;
}

int link(int file, const char *name)
{
    return linkat(AT_FDCWD, ownPathOf(file).constData(), AT_FDCWD, name, AT_SYMLINK_FOLLOW);
}
#else
int openNameless(const QString &)
{
    return -1;
}
int link(int, const char *)
{
    return -1;
}
#endif

/// What there is keeps its permissions.
void keepPermissions(int file, const QString &place)
{
    struct stat present;
    if (stat(QFile::encodeName(place).constData(), &present) == 0)
        static_cast<void>(
                fchmod(file, present.st_mode & 07777)); // where that is forbidden, ours do
}

} // namespace

RySafeFile::RySafeFile(const QString &fileName)
    : m_place(withoutLinks(fileName))
{}

RySafeFile::~RySafeFile()
{
    discard();
}

bool RySafeFile::open(OpenMode)
{
    const QByteArray place = QFile::encodeName(m_place);
    const QFileInfo present(m_place);
    if (present.exists() && !present.isFile()) {
        setErrorString(u"it is not a regular file"_s);
        return false;
    }
    if (present.exists() && access(place.constData(), W_OK) != 0)
        return fail(errno);
    m_file = openNameless(m_place);
    if (m_file < 0)
        m_file = withFreeName(m_place, m_temporaryName, [](const char *name) {
            return ::open(name, O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, anybody);
        });
    if (m_file < 0)
        return fail(errno);
    keepPermissions(m_file, m_place);
    return QIODevice::open(WriteOnly);
}

bool RySafeFile::finish()
{
    if (m_hasFailed || m_file < 0)
        return false;
    const bool isOnDisk = fdatasync(m_file) == 0 || errno == EINVAL || errno == EROFS; // cannot say
    return isOnDisk || fail(errno);
}

bool RySafeFile::commit()
{
    if (!finish() || !giveName())
        return false;
    discard();
    return true;
}

RySafeFile *RySafeFile::commitAll(std::span<RySafeFile *const> files)
{
    for (RySafeFile *const file : files) {
        if (!file->finish())
            return file;
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
        files[i]->keepPresent();
        if (files[i]->giveName())
            continue;
        for (RySafeFile *const committed : files.first(i))
            committed->takeBack();
        return files[i];
    }
    for (RySafeFile *const file : files)
        file->discard();
    return nullptr;
}

/// Gives what is in the place a second name.
void RySafeFile::keepPresent()
{
    const QByteArray place = QFile::encodeName(m_place);
    const auto linkTo = [&place](const char *name) { return ::link(place.constData(), name); };
    const bool isKept = withFreeName(m_place, m_keptName, linkTo) == 0;
    m_canBeTakenBack = isKept || errno == ENOENT; // some disks know no second names
}

void RySafeFile::takeBack()
{
    const QByteArray place = QFile::encodeName(m_place);
    if (!m_keptName.isEmpty())
        std::rename(QFile::encodeName(m_keptName).constData(), place.constData());
    else if (m_canBeTakenBack)
        unlink(place.constData());
    m_keptName.clear();
}

/// Under another name first where there is something in the place: only so is it replaced at once.
bool RySafeFile::giveName()
{
    const QByteArray place = QFile::encodeName(m_place);
    if (m_temporaryName.isEmpty()) {
        if (link(m_file, place.constData()) == 0)
            return true;
        if (errno != EEXIST)
            return fail(errno);
        const auto linkTo = [this](const char *name) { return link(m_file, name); };
        if (withFreeName(m_place, m_temporaryName, linkTo) < 0)
            return fail(errno);
    }
    if (std::rename(QFile::encodeName(m_temporaryName).constData(), place.constData()) != 0)
        return fail(errno);
    m_temporaryName.clear();
    return true;
}

void RySafeFile::discard()
{
    QIODevice::close();
    if (m_file >= 0)
        ::close(m_file);
    m_file = -1;
    for (QString *const name : {&m_temporaryName, &m_keptName}) {
        if (!name->isEmpty())
            unlink(QFile::encodeName(*name).constData());
        name->clear();
    }
}

bool RySafeFile::fail(int error)
{
    if (!m_hasFailed)
        setErrorString(explained(error, m_place));
    m_hasFailed = true;
    return false;
}

qint64 RySafeFile::size() const
{
    struct stat state;
    return m_file >= 0 && fstat(m_file, &state) == 0 ? state.st_size : 0;
}

qint64 RySafeFile::readData(char *, qint64)
{
    return -1;
}

qint64 RySafeFile::writeData(const char *data, qint64 size)
{
    for (qint64 done = 0; done < size && !m_hasFailed;) {
        const ssize_t written = pwrite(m_file, data + done, std::size_t(size - done), pos() + done);
        if (written >= 0)
            done += written;
        else if (errno != EINTR)
            fail(errno);
    }
    return m_hasFailed ? -1 : size;
}
