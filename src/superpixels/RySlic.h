#pragma once

#include "image/RyImage.h"
#include "superpixels/RySuperPixel.h"

#include <QList>
#include <QObject>
#include <QPainterPath>

struct RySlicSlice;

/**
 * Divides the part of a picture inside a lasso into superpixels.
 *
 * Input    a picture with its YCbCr plane and a closed path in picture pixels.
 * Output   superPixelAssignments(): the picture's size, Format_ARGB32, every word a signed 32-bit
 *          label, 0 for none; clusterInformations(): one record a label, record 0 for none.
 * Source   SLIC (Achanta et al., IEEE TPAMI 34(11), 2012) in YCbCr with the distance of
 *          RySuperPixel, a fixed ten rounds, and pieces of at most 1/400 of the mean area merged
 *          into their most similar neighbour.
 * Errors   none reported: a lasso without area inside the picture, with coordinates that are not
 *          finite or not below 1e9, or a grid step below one pixel give all-zero labels and only
 *          record 0; a failed allocation gives a null label image.
 * Threads  run() blocks its caller and fans out over the global pool; results do not depend on the
 *          core count. They do depend on the kernel: see RySlicKernels. Time O(lasso area).
 */
class RySlic : public QObject
{
    Q_OBJECT

public:
    RySlic() = default;

    /// Stores both (the picture is borrowed) and chooses the default number of superpixels.
    void setup(const RyImage *image, const QPainterPath &lasso);
    /// Asks for this many superpixels instead.
    void setupParameters(int superPixelCount);
    /// One superpixel for each 1,800 pixels of the lasso's rectangle and 66 more, 100 … 1,200.
    int countSuperPixels() const;
    int requestedSuperPixels() const { return m_superPixelCount; }

    /// The lasso's bounding rectangle rounded to pixels; null when it cannot be rounded.
    QRect lassoBoundingRect() const { return m_lassoRect; }

    /// True when the lasso has no area that could be divided; run() then labels nothing.
    bool isDegenerate() const;

    /// Number of increaseProgress() signals that run() emits.
    int totalProgressSteps() const { return 4; }

    /// All stages; always emits all progress signals. Call once.
    void run();

    QImage superPixelAssignments() const { return m_labels; }
    QList<RySuperPixel> clusterInformations() const { return m_superPixels; }
    const RySuperPixel *clusterInformations(int index) const { return &m_superPixels.at(index); }

    /// The stages of run(), in its order.
    void initialize();
    void adjustSuperPixels();
    void clipLabelsToLasso();
    void forceConnectivity();

    /// Picks the pixel of the 3 × 3 block round (x, y) where luminance changes least to the right
    /// and against column 0 of the row below. Candidates that would read outside are passed over.
    QPoint findLocalGradientMinimum(int x, int y, const RyYCbCrPixel *pixels) const;

    /// The assignment kernels, one slice a call.
    static void adjustSuperPixelSlice(const RySlicSlice &slice);
    static void adjustSuperPixelSliceSSE(const RySlicSlice &slice);
    static void adjustSuperPixelSliceAVX(const RySlicSlice &slice);

Q_SIGNALS:
    void increaseProgress();

private:
    /// The columns and rows that may hold labels when the lasso has been cut out. Position and
    /// width of its rectangle are rounded one by one, so that the lasso may fill one column beside
    /// it.
    QRect fillableArea() const;
    QList<RySlicSlice> createSlices();
    void updateSuperPixelInformations();
    void initNewSuperPixels(int count);
    void addLabelledPixels();
    void allocateSmallClusters();

    double m_step = 0.0; // grid interval in pixels
    int m_superPixelCount = 0;
    int m_iterations = 10;
    QImage m_labels;
    QList<RySuperPixel> m_superPixels; // index = label; 0 is reserved and no superpixel
    QPainterPath m_lassoPath;
    QRect m_lassoRect; // of the path, rounded; null when it cannot be
    const RyImage *m_image = nullptr;
};
