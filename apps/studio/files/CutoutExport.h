#pragma once

#include "cutout/CutoutPicture.h"
#include "document/CutoutSource.h"
#include "files/ExportKind.h"

#include <QImage>
#include <QString>

#include <stop_token>

/**
 * Makes what leaves the program, at the picture's full size.
 *
 * Errors   AppError, also once a stop was requested, and std::bad_alloc.
 * Threads  any thread; takes time in proportion to the picture.
 */
namespace CutoutExport {

QImage picture(const CutoutSource &source, const CutoutPicture::Options &options,
               const std::stop_token &stop);

/// The file appears when all of it is written; otherwise what was there before stays.
void write(const QString &fileName, ExportKind kind, const CutoutSource &source,
           const CutoutPicture::Options &options, const std::stop_token &stop);

} // namespace CutoutExport
