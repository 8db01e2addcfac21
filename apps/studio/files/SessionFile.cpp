#include "files/SessionFile.h"

#include "cutout/AppError.h"
#include "cutout/PictureEncoder.h"
#include "files/StateFolder.h"
#include "gestures/GestureHistory.h"
#include "gestures/WireTracer.h"
#include "scissors/RyScissorsEdgePicture.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QSaveFile>

#include <algorithm>
#include <utility>

namespace {

/// For sessions that tell no picture: one of the same name.
QString namesake(const QFileInfo &session)
{
    const QList<QByteArray> formats = QImageReader::supportedImageFormats();
    const QFileInfoList siblings =
            session.dir().entryInfoList(QDir::Files | QDir::Readable, QDir::Name);
    for (const QFileInfo &file : siblings) {
        if (file.completeBaseName() == session.completeBaseName() &&
            formats.contains(file.suffix().toLower().toLatin1()))
            return file.absoluteFilePath();
    }
    return {};
}

QString findPicture(const QFileInfo &session, const QString &told)
{
    if (told.isEmpty())
        return namesake(session);
    const QFileInfo file(QDir(session.absolutePath()).filePath(told)); // absolute names stay
    return file.isFile() ? QDir::cleanPath(file.absoluteFilePath()) : QString();
}

/// Relative where the picture lies in the session's folder or below it, so that both can be moved
/// together.
QString nameFor(const QString &picture, const QFileInfo &session)
{
    const QString relative = QDir(session.absolutePath()).relativeFilePath(picture);
    const bool isBelow =
            !relative.startsWith(QLatin1StringView("../")) && QDir::isRelativePath(relative);
    return isBelow && !picture.startsWith(u':') ? relative : picture;
}

void writeFile(const QString &fileName, const QByteArray &content)
{
    QSaveFile file(fileName);
    const bool isWritten = file.open(QIODevice::WriteOnly) &&
                           file.write(content) == content.size() && file.commit();
    if (!isWritten)
        throw AppError(file.errorString());
}

QByteArray encoded(const QImage &picture)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (const QString error = PictureEncoder::encode(buffer, picture, "png"); !error.isEmpty())
        throw AppError(error);
    return bytes;
}

/// A picture in the state folder is deleted with the session of its name.
bool hasFileThatStays(const OpenedPicture &picture, const QFileInfo &session)
{
    if (!StateFolder::holds(picture.fileName))
        return !picture.fileName.isEmpty();
    return StateFolder::holds(session.filePath()) &&
           QFileInfo(picture.fileName).completeBaseName() == session.completeBaseName();
}

/// A name beside the session: people's files stay, what the studio has kept is replaced.
QString newPictureName(const QFileInfo &session)
{
    const QString base = session.absolutePath() + u'/' + session.completeBaseName();
    QString name = base + QLatin1StringView(".png");
    for (int number = 2; QFileInfo::exists(name) && !StateFolder::holds(name); ++number)
        name = base + QStringLiteral("-%1.png").arg(number);
    return name;
}

/// Lays the wires of a session file; gestures on the cut may stand in between.
class WireLayer
{
public:
    explicit WireLayer(const OpenedPicture &picture)
        : m_picture(picture)
    {}

    /// The closed wire's outline for a gesture that closes one.
    QPolygonF add(const Gesture &gesture)
    {
        if (const auto *const seed = std::get_if<Gesture::Seed>(&gesture.step)) {
            begin(m_picture.toCut(PicturePoint(seed->point)));
            m_gestures = {gesture};
        } else if (const auto *const wire = std::get_if<Gesture::Wire>(&gesture.step)) {
            require(m_tracer.continueTo(m_picture.toCut(PicturePoint(wire->point))));
            m_gestures.append(gesture);
        } else if (std::holds_alternative<Gesture::Close>(gesture.step)) {
            require(m_tracer.close());
            m_gestures.append(gesture);
            return m_tracer.outline();
        }
        return {};
    }

    QList<Gesture> gestures() const { return m_gestures; } ///< of the wire, from its seed on

private:
    void begin(const CutPoint &point)
    {
        if (!m_hasPicture)
            m_tracer.setPicture(RyScissorsEdgePicture::edgePicture(m_picture.cuttingPicture));
        m_hasPicture = true;
        m_tracer.begin(point);
    }

    static void require(bool isFound)
    {
        if (!isFound)
            throw AppError(QCoreApplication::translate(
                    "SessionFile", "one of its wires does not find its way on this picture"));
    }

    const OpenedPicture &m_picture;
    WireTracer m_tracer;
    bool m_hasPicture = false;
    QList<Gesture> m_gestures;
};

bool isOfAWire(const Gesture &gesture)
{
    return std::holds_alternative<Gesture::Seed>(gesture.step) ||
           std::holds_alternative<Gesture::Wire>(gesture.step) ||
           std::holds_alternative<Gesture::Close>(gesture.step);
}

/// Hovering and the mask's own colour leave no trace in a cut.
bool changesTheCut(const Gesture &gesture)
{
    return !std::holds_alternative<Gesture::Hover>(gesture.step) &&
           !std::holds_alternative<Gesture::Color>(gesture.step);
}

} // namespace

bool SessionFile::isSession(const QString &fileName)
{
    return fileName.endsWith(suffix, Qt::CaseInsensitive);
}

SessionFile::Contents SessionFile::read(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw AppError(file.errorString());
    Contents contents;
    contents.file = GestureFile::parse(file.readAll(), QFileInfo(fileName).fileName());
    contents.pictureFile = findPicture(QFileInfo(fileName), contents.file.pictureFile);
    return contents;
}

QString SessionFile::pictureFile(const QString &fileName)
{
    constexpr qint64 headBytes = 16384; // the picture stands above all gestures
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray head = file.read(headBytes);
    try {
        const QString told =
                GestureFile::parse(head.first(head.lastIndexOf('\n') + 1), {}).pictureFile;
        return told.isEmpty() ? told : QFileInfo(fileName).absoluteDir().absoluteFilePath(told);
    } catch (const AppError &) {
        return {};
    }
}

QList<ReplayStep> SessionFile::steps(const GestureFile &file, const OpenedPicture &picture,
                                     const std::stop_token &stop)
{
    QList<ReplayStep> steps;
    WireLayer wires(picture);
    QList<Gesture> methods{Gesture(Gesture::Method())}; // of the cut that comes next
    const auto recorded = GestureHistory::inSteps(GestureHistory::withoutUndo(file.gestures));
    for (const QList<Gesture> &gestures : recorded) {
        if (stop.stop_requested())
            break;
        const Gesture &last = gestures.last();
        if (isOfAWire(last)) {
            const QPolygonF outline = wires.add(last);
            if (!outline.isEmpty())
                steps.append({std::exchange(methods, {}) + wires.gestures(), outline});
        } else if (std::holds_alternative<Gesture::Method>(last.step)) {
            methods = gestures;
        } else if (changesTheCut(last) && (last.beginsCut() || !steps.isEmpty())) {
            const bool cuts = last.beginsCut() || std::holds_alternative<Gesture::Recut>(last.step);
            steps.append({(cuts ? std::exchange(methods, {}) : QList<Gesture>()) + gestures, {}});
        }
    }
    return steps;
}

SessionFile::Saved SessionFile::write(const QString &fileName, const QList<Gesture> &gestures,
                                      const EdgeSettings &edges, const OpenedPicture &picture)
{
    const QFileInfo session(fileName);
    Saved saved{fileName, picture.fileName, picture.reference.sha256};
    if (!hasFileThatStays(picture, session)) {
        const QByteArray content = encoded(picture.picture);
        saved.pictureFile = newPictureName(session);
        saved.pictureSha256 = QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex();
        writeFile(saved.pictureFile, content);
    }
    const QSize cuttingSize = picture.scale.cuttingSize();
    GestureFile file;
    file.picture = {picture.picture.size(), saved.pictureSha256};
    file.pictureFile = nameFor(saved.pictureFile, session);
    file.longestSide = cuttingSize == picture.picture.size()
                               ? 0
                               : std::max(cuttingSize.width(), cuttingSize.height());
    file.gestures = gestures;
    file.edges = EdgeChoices::of(edges);
    writeFile(fileName, file.text());
    return saved;
}
