#pragma once

#include "RyImageCutterExport.h"
#include "segmentation/RyMementoSegmentation.h"
#include "segmentation/RySegmentationStatistics.h"

#include <QColor>
#include <QFileInfo>
#include <QImage>
#include <QPainterPath>
#include <QThread>

#include <memory>

class RySegmentationState;

/**
 * A cut-out session on one picture: the object a host holds, drives with the user's gestures and
 * hears from through signals.
 *
 * Give it a picture with setup(), a mask colour, and a closed lasso with
 * startThreadWithInitialPath(); it answers with segmentationProgress() and sendNewMask().
 *
 * Input    any picture QImage holds; paths in picture pixels, whatever their shape: points outside
 *          the picture, or within 2 % of its border, count as on the border.
 * Output   masks of the picture's size, Format_ARGB32_Premultiplied: transparent where the object
 *          is, elsewhere the opaque mask colour.
 * Source   SLIC superpixels, joined by graph-based region growing, judged by a colour histogram;
 *          docs/design.md names the papers.
 * Errors   none reported: a path with coordinates that are not finite is ignored; a lasso without
 *          area inside the picture gives a mask without foreground; an empty picture, or too
 *          little memory, gives a null mask.
 * Threads  every public call belongs to the thread that made the object; they may come in any order
 *          at any time, and none waits for work that another thread has begun on a lasso. Calls
 *          that draw a picture draw it in the caller's thread; so work setup() for a picture that
 *          must be converted, containsPath() and setMaskIsInverted(). Signals are emitted from
 *          several threads: connect them with the default connection type and they arrive in the
 *          receiver's thread. A mask that was on its way when reset() was called may arrive after
 *          reset()'s null mask. Results do not depend on the number of cores.
 */
class RYIMAGECUTTER_EXPORT RyImageSegmentation : public QThread
{
    Q_OBJECT

public:
    /// What the session's thread does.
    enum SegmentationMode {
        Idle = 0,
        InitialCut = 1,
        PaintSelection = 2,
        PaintSelectionHover = 3,
        Scribble = 4,
        UpdateMask = 5,
        InvertMask = 6,
    };

    RyImageSegmentation();
    /// Asks running work to stop and waits for it; after two seconds it is terminated.
    ~RyImageSegmentation() override;
    Q_DISABLE_COPY_MOVE(RyImageSegmentation)

    /// Begins a session on a picture, which is converted to Format_ARGB32 where it is something
    /// else; a null picture empties the session. Nothing computed for an earlier picture is
    /// adopted.
    void setup(const QImage &image, const QFileInfo &fileInfo);
    /// Replaces the picture as given. Results of another size are dropped from then on, others are
    /// still adopted; the next lasso is computed anew.
    void setImage(const QImage &image);

    /// Forgets the regions and what was asked for, and emits a null mask and progress 0. The mask
    /// stays readable with maskForeground() until the next lasso, unless the picture is null.
    void reset();
    /// Interrupts the session's thread with its worker, then reset(). While the thread is idle a
    /// worker on the pool is left alone, and its result still adopted.
    void cancel();

    /// True while there are regions to refine.
    bool isValid() const;
    QImage maskForeground() const;
    /// True when the path lies within the lasso that the regions were computed for, grown by ten
    /// pixels. Takes time in proportion to the path's area.
    bool containsPath(const QPainterPath &path) const;

    /// Only red, green and blue count. Recolours a mask in the session's thread.
    void setMaskColor(const QColor &color);
    /// Inverts the mask in the session's thread; while that is busy, only the flag changes.
    void invertMask();
    /// Inverts the mask at once, in the caller's thread, when the flag changes and isValid().
    void setMaskIsInverted(bool inverted);

    /// The state of the cut; with superpixel data it carries labels and points of regions as well.
    std::unique_ptr<RyMementoSegmentation> createMemento(bool withSuperPixelData) const;
    RySegmentationStatistics statistics() const;

    /// A path filled opaque white on black, without antialiasing, in the mask's size.
    QImage createMask(const QPainterPath &path) const;
    /// The lasso grown by ten pixels, likewise, in the picture's size.
    QImage createImageWithLassoPath() const;
    /// The mask with its outline rounded by a blur of this radius in pixels, as a one-bit picture.
    /// GUI thread, with a QApplication. Rendering into one bit goes by lightness: only a light mask
    /// colour, such as white, gives a mask that is not empty. Null without a mask.
    QImage createSmoothForegroundMask(int radius) const;
    /// Outlines of all regions, opaque white on transparent, Format_ARGB32, the picture's size;
    /// without outlines where labels and picture differ in size.
    QImage drawContour() const;

public Q_SLOTS:
    /// A new lasso. Inside the last one its regions are used again, else new ones are computed.
    void startThreadWithInitialPath(const QPainterPath &thePath);
    /// For the session's own workers; signals of others are ignored.
    void setProgressFromWorker(int theCurrentStep, int theTotalStep);
    void resetProgress();

Q_SIGNALS:
    void segmentationProgress(int currentStep, int totalSteps);
    void sendNewMask(const QImage &theImage);  ///< null from reset()
    void sendContours(const QImage &theImage); ///< for hosts; never emitted by the session

protected:
    void run() override;

private:
    struct Private;

    // Host thread.
    void startWithMode(SegmentationMode mode);
    void startSessionThread();
    void startInitialSegmentation(const QPainterPath &path);
    void initialSegmentationIsFinished();
    void forgetWorker();

    // Session thread.
    void perform(SegmentationMode mode);
    void doInitialCut();
    bool adoptLassoInsideTheLastOne(RySegmentationState &work, quint64 epoch);
    void cutObjectInitial(RySegmentationState &work, quint64 epoch);
    void updateMask();
    void invertMaskJob(); // or host thread, from setMaskIsInverted()

    // Any thread.
    RySegmentationState snapshot() const;
    bool publishCut(const RySegmentationState &work, quint64 epoch);
    void changeMask(void (RySegmentationState::*change)());
    void increaseAndUpdateProgressbar(quint64 epoch);
    int totalSteps() const;

    const std::unique_ptr<Private> d;
};
