#include "segmentation/RySegmentationThread.h"

// What moc adds to the class is all there is to compile.
#include "moc_RySegmentationThread.cpp"
