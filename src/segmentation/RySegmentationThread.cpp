#include "segmentation/RySegmentationThread.h"
