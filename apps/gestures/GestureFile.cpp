#include "gestures/GestureFile.h"

#include "gestures/GestureReader.h"
#include "gestures/GestureWords.h"
#include "gestures/GestureWriter.h"

#include <QStringList>
#include <QUrl>

#include <algorithm>
#include <climits>

using namespace Qt::StringLiterals;

namespace {

constexpr char signature[] = "rycut-session";
constexpr char version[] = "1";
constexpr char pictureWord[] = "picture";
constexpr char fileWord[] = "file";
constexpr char longestSideWord[] = "longest-side";
constexpr char widthWord[] = "width";

void readVersion(GestureReader &reader)
{
    if (!reader.nextLine() || reader.lineWord() != signature)
        reader.fail(u"a session begins with 'rycut-session 1', and this one does not"_s);
    const QByteArrayView found = reader.takeWord();
    if (found != version)
        reader.fail(u"this is version '%1' of session files, but only version %2 is known"_s.arg(
                QString::fromUtf8(found), QString::fromLatin1(version)));
    reader.expectEndOfLine();
}

bool isHash(QByteArrayView word)
{
    constexpr qsizetype digits = 64;
    return word.size() == digits && std::all_of(word.begin(), word.end(), [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
           });
}

GestureFile::Picture readPicture(GestureReader &reader)
{
    reader.setForm("picture WIDTHxHEIGHT SHA256");
    const QByteArrayView size = reader.takeWord();
    const qsizetype cross = std::max<qsizetype>(0, size.indexOf('x'));
    const int width = size.first(cross).toInt(); // 0 where there is no number
    const int height = size.sliced(std::min(cross + 1, size.size())).toInt();
    if (width < 1 || height < 1)
        reader.failExpecting(u"a size such as 600x400"_s);
    const QByteArrayView hash = reader.takeWord();
    if (!isHash(hash))
        reader.failExpecting(u"64 hexadecimal digits in lower case"_s);
    return {QSize(width, height), hash.toByteArray()};
}

/// Encoded as in a URL: names hold blanks and comment signs.
QString readPictureFile(GestureReader &reader)
{
    reader.setForm("file NAME");
    const QString name = QUrl::fromPercentEncoding(reader.takeWord().toByteArray());
    if (name.isEmpty())
        reader.failExpecting(u"the name of a picture's file"_s);
    return name;
}

int readLongestSide(GestureReader &reader)
{
    reader.setForm("longest-side PIXELS");
    return reader.takeNumber(0, INT_MAX);
}

/// False for lines that do not tell of the picture.
bool readAboutPicture(GestureReader &reader, GestureFile &file, bool isNextToVersion)
{
    const QByteArrayView word = reader.lineWord();
    if (word != pictureWord && word != fileWord && word != longestSideWord)
        return false;
    if (word == pictureWord && !isNextToVersion)
        reader.fail(u"the picture belongs right below 'rycut-session 1'"_s);
    if (!file.gestures.isEmpty())
        reader.fail(u"'%1' belongs above the first gesture"_s.arg(QString::fromLatin1(word)));
    if (word == pictureWord)
        file.picture = readPicture(reader);
    else if (word == fileWord)
        file.pictureFile = readPictureFile(reader);
    else
        file.longestSide = readLongestSide(reader);
    return true;
}

/// False for lines that do not tell of the edge.
bool readAboutEdge(GestureReader &reader, EdgeChoices &edges)
{
    for (const EdgeTable::Row &row : EdgeTable::rows()) {
        if (reader.lineWord() != row.name)
            continue;
        reader.setForm(row.name + ' ' + row.unit.toUpper());
        edges.choose(row, reader.takeNumber(row.least, row.most));
        return true;
    }
    return false;
}

Gesture readGesture(GestureReader &reader)
{
    QStringList names;
    for (const GestureWords::Word &word : GestureWords::all()) {
        if (word.name != reader.lineWord()) {
            names.append(QString::fromLatin1(word.name));
            continue;
        }
        Gesture gesture = word.blank;
        reader.setForm(word.form);
        GestureWords::describe(reader, gesture);
        return gesture;
    }
    for (const EdgeTable::Row &row : EdgeTable::rows())
        names.append(QString::fromLatin1(row.name));
    reader.failExpecting(u"width, %1"_s.arg(names.join(u", "_s)));
}

/// Whether a wire may follow the gesture; fails where it is a wire itself with nothing to begin at.
bool leavesASeed(const Gesture &gesture, bool hadSeed, const GestureReader &reader)
{
    const bool isClose = std::holds_alternative<Gesture::Close>(gesture.step);
    if (!hadSeed && (isClose || std::holds_alternative<Gesture::Wire>(gesture.step)))
        reader.fail(u"a wire needs a seed before it, and a new one after 'close'"_s);
    return std::holds_alternative<Gesture::Seed>(gesture.step) || (hadSeed && !isClose);
}

} // namespace

GestureFile GestureFile::parse(const QByteArray &text, const QString &name)
{
    GestureReader reader(text, name);
    GestureFile file;
    bool hasSeed = false;
    readVersion(reader);
    for (bool isNextToVersion = true; reader.nextLine(); isNextToVersion = false) {
        if (reader.lineWord() == widthWord) {
            reader.takeBrushWidth();
        } else if (!readAboutPicture(reader, file, isNextToVersion) &&
                   !readAboutEdge(reader, file.edges)) {
            file.gestures.append(readGesture(reader));
            hasSeed = leavesASeed(file.gestures.last(), hasSeed, reader);
        }
        reader.expectEndOfLine();
    }
    return file;
}

QByteArray GestureFile::text() const
{
    GestureWriter writer;
    writer.writeLine(QByteArray(signature) + ' ' + version);
    if (picture)
        writer.writeLine(QByteArray(pictureWord) + ' ' + QByteArray::number(picture->size.width()) +
                         'x' + QByteArray::number(picture->size.height()) + ' ' + picture->sha256);
    if (!pictureFile.isEmpty())
        writer.writeLine(QByteArray(fileWord) + ' ' + QUrl::toPercentEncoding(pictureFile, "/:"));
    if (longestSide)
        writer.writeLine(QByteArray(longestSideWord) + ' ' + QByteArray::number(*longestSide));
    for (const Gesture &gesture : gestures)
        writer.write(gesture);
    for (const EdgeTable::Row &row : EdgeTable::rows()) {
        if (const std::optional<int> number = edges.chosen(row))
            writer.writeLine(row.name + ' ' + QByteArray::number(*number));
    }
    return writer.text();
}
