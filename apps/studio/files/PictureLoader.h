#pragma once

#include "background/BackgroundLane.h"
#include "document/OpenedPicture.h"

#include <QImage>
#include <QObject>
#include <QString>

#include <functional>

/**
 * Opens pictures beside the event loop. Only the newest request is answered.
 *
 * Threads  the GUI thread.
 */
class PictureLoader : public QObject
{
    Q_OBJECT

public:
    explicit PictureLoader(QObject *parent = nullptr);

    /// A longest side of 0 cuts pictures at their full size.
    void setLongestSide(int pixels) { m_longestSide = pixels; }

    /// For people: the file's name, unless it is none that anybody gave.
    static QString titleOf(const QString &fileName);

    void load(const QString &fileName);
    /// A picture without a file.
    void load(const QImage &image);
    bool isLoading() const { return m_lane.isBusy(); }
    void cancel() { m_lane.cancel(); } ///< nothing comes any more

Q_SIGNALS:
    void isLoadingChanged(bool isLoading);
    void loaded(const OpenedPicture &picture);
    void failed(const QString &sentence);

private:
    using Decode = std::function<OpenedPicture()>;

    void start(const QString &title, const Decode &decode);

    int m_longestSide = 0;
    BackgroundLane m_lane; // two large pictures at once would need twice the memory
};
