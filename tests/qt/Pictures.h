// What is painted, held against pictures that stand in tests/qt/pictures and that somebody has looked at.
#pragma once

#include <gtest/gtest.h>

#include <QImage>
#include <string>

namespace tarvix {

// How two images differ, pixel by pixel.
struct ImageDifference {
    int pixels = 0;  // as many differ by more than the tolerance; all of them where the sizes differ
    int worst = 0;   // the greatest difference of any channel, from 0 to 255
    QImage image;    // what differs in red over a pale copy; null where the sizes differ
};
// A channel may differ by `tolerance`: versions of Qt round the coverage of a curve's pixels differently.
ImageDifference difference(const QImage& actual, const QImage& expected, int tolerance);

// Whether an image is the picture of this name. If it is not, the image and the difference are left in the build
// folder, and the failure says where. With TARVIX_MAKE_PICTURES in the environment the picture is made anew instead.
testing::AssertionResult isPicture(const std::string& name, const QImage& actual);

}  // namespace tarvix
