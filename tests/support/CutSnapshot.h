#pragma once

#include "segmentation/RyImageSegmentation.h"
#include "support/Digest.h"

#include <algorithm>
#include <memory>

inline std::unique_ptr<RyMementoSegmentation> mementoOf(const RyImageSegmentation &session,
                                                        bool withRegions)
{
    return std::unique_ptr<RyMementoSegmentation>(session.createMemento(withRegions));
}

/// A session's cut at one moment.
struct CutSnapshot
{
    explicit CutSnapshot(const RyMementoSegmentation &memento)
        : mask(memento.mask())
        , foreground(memento.foregroundClusters())
        , background(memento.backgroundClusters())
        , color(memento.maskColor().rgb())
    {}
    bool operator==(const CutSnapshot &other) const = default;

    QByteArray digest() const
    {
        Digest all;
        all << mask << color;
        for (const auto &set : {foreground, background}) {
            QList<int> sorted(set.begin(), set.end());
            std::sort(sorted.begin(), sorted.end());
            all << sorted;
        }
        return all.hex();
    }

    QImage mask;
    QSet<int> foreground, background;
    QRgb color;
};
