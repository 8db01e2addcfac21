#pragma once

#include <QString>

/// Where file dialogs begin for who has not been anywhere yet.
namespace PicturesFolder {

/// The system's own, or the home folder where that one was never made.
QString path();

} // namespace PicturesFolder
