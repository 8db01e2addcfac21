# OpenCV's image processing alone: Debian's libopencv-imgproc-dev has no package file, which comes with
# everything else in libopencv-dev. Sets OpenCV_FOUND, OpenCV_INCLUDE_DIRS and OpenCV_LIBS.
find_path(OpenCV_INCLUDE_DIR opencv2/imgproc.hpp PATH_SUFFIXES opencv4)
find_library(OpenCV_imgproc_LIBRARY opencv_imgproc)
find_library(OpenCV_core_LIBRARY opencv_core)
mark_as_advanced(OpenCV_INCLUDE_DIR OpenCV_imgproc_LIBRARY OpenCV_core_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(OpenCV
    REQUIRED_VARS OpenCV_imgproc_LIBRARY OpenCV_core_LIBRARY OpenCV_INCLUDE_DIR)
set(OpenCV_INCLUDE_DIRS ${OpenCV_INCLUDE_DIR})
set(OpenCV_LIBS ${OpenCV_imgproc_LIBRARY} ${OpenCV_core_LIBRARY})
