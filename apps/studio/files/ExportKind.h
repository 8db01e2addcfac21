#pragma once

/// What can leave the program.
enum class ExportKind {
    Cutout,  ///< the object, as a PNG with straight alpha or on a colour
    Mask,    ///< how much of every pixel is the object's, as a grey PNG
    Outline, ///< along the sides of the object's pixels, as an SVG with its holes
};
