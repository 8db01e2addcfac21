#pragma once

/// What the last completed computation of a session did, for reports. Times are in milliseconds and
/// say 0 for what was reused from an earlier lasso.
struct RySegmentationStatistics
{
    int requestedSuperPixels = 0; ///< that SLIC was asked for
    int superPixels = 0;          ///< after its clean-up
    int regions = 0; ///< after region growing: what labels, clicks and strokes deal with

    double colorPlanesMs = 0.0;
    double graphCutMs = 0.0; ///< until its mask, 0 where the cut goes by regions
    double superPixelsMs = 0.0;
    double edgesWaitMs = 0.0; ///< beyond the superpixels; the edge picture is computed beside them
    double regionsMs = 0.0;
    double firstCutMs = 0.0;
};
