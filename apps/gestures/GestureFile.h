#pragma once

#include "cutout/EdgeChoices.h"
#include "gestures/Gesture.h"

#include <QByteArray>
#include <QList>
#include <QSize>
#include <QString>

#include <optional>

/**
 * What was done in a session, as a text that people can read and change.
 *
 * One gesture a line, in pixels of the picture; "#" starts a comment. The first line says
 * "rycut-session 1", the next one may say which picture it was: "picture WIDTHxHEIGHT SHA256".
 * Then may follow where its file is, "file NAME", and how it was cut, "longest-side PIXELS". Lines
 * with the words of EdgeTable may stand anywhere: how the edge is worked on in the end.
 */
struct GestureFile
{
    struct Picture
    {
        QSize size;        ///< as it is meant to be seen, turned upright
        QByteArray sha256; ///< of the picture's file, as sha256sum tells it
    };

    std::optional<Picture> picture;
    QString pictureFile; ///< relative to the session's folder or absolute; empty where none is told
    std::optional<int> longestSide; ///< that the picture was reduced to; 0 for never
    QList<Gesture> gestures;
    EdgeChoices edges; ///< at the picture's full size, of what is cut in the end

    /// The name is for messages. Whatever is malformed is thrown as AppError.
    static GestureFile parse(const QByteArray &text, const QString &name);
    /// Parsing this gives every number back as it was.
    QByteArray text() const;
};
