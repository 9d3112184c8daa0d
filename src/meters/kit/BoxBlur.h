#pragma once
// In-place Gaussian blur of an image: three box passes per axis, a close and fast approximation.
// Sigma is in pixels; pixels outside the image count as transparent, like a layer's
// surroundings.
#include <QImage>

namespace corvanel::meters {

// `alpha` must be Format_Alpha8.
void blurAlpha(QImage& alpha, double sigma);

// `image` must be Format_ARGB32_Premultiplied; the four channels are blurred alike.
void blurImage(QImage& image, double sigma);

}  // namespace corvanel::meters
