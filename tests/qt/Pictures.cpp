#include "tests/qt/Pictures.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace tarvix {

namespace {

constexpr int kTolerance = 6;

int mostOf(QRgb a, QRgb b) {
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b)),
                     std::abs(qAlpha(a) - qAlpha(b))});
}

QRgb pale(QRgb pixel) {
    const int gray = 191 + qGray(pixel) / 4;
    return qRgb(gray, gray, gray);
}

QString inFolder(const char* folder, const std::string& file) {
    return QString::fromUtf8(folder) + '/' + QString::fromStdString(file);
}

// Leaves an image for whoever looks into a failure.
std::string leave(const QImage& image, const std::string& file) {
    std::filesystem::create_directories(TARVIX_FAILED_PICTURES);
    const QString path = inFolder(TARVIX_FAILED_PICTURES, file);
    return image.save(path) ? path.toStdString() : "(not written: " + path.toStdString() + ")";
}

}  // namespace

ImageDifference difference(const QImage& actual, const QImage& expected, int tolerance) {
    if (actual.size() != expected.size()) return {actual.width() * actual.height(), 255, QImage()};
    ImageDifference result{0, 0, QImage(actual.size(), QImage::Format_RGB32)};
    for (int y = 0; y < actual.height(); ++y)
        for (int x = 0; x < actual.width(); ++x) {
            const int most = mostOf(actual.pixel(x, y), expected.pixel(x, y));
            result.worst = std::max(result.worst, most);
            result.pixels += most > tolerance;
            result.image.setPixel(x, y, most > tolerance ? qRgb(220, 0, 0) : pale(expected.pixel(x, y)));
        }
    return result;
}

testing::AssertionResult isPicture(const std::string& name, const QImage& actual) {
    const QString path = inFolder(TARVIX_PICTURES, name + ".png");
    if (std::getenv("TARVIX_MAKE_PICTURES")) {
        if (actual.save(path)) return testing::AssertionSuccess();
        return testing::AssertionFailure() << "can't write " << path.toStdString();
    }
    const QImage expected(path);
    if (expected.isNull()) {
        return testing::AssertionFailure()
               << "there is no " << path.toStdString() << "; painted: " << leave(actual, name + ".png");
    }
    const ImageDifference found = difference(actual, expected, kTolerance);
    if (found.pixels == 0) return testing::AssertionSuccess();
    auto failure = testing::AssertionFailure()
                   << found.pixels << " pixels differ, by up to " << found.worst << " of 255"
                   << "\n  expected:   " << path.toStdString() << "\n  painted:    " << leave(actual, name + ".png");
    if (!found.image.isNull()) failure << "\n  difference: " << leave(found.image, name + "-difference.png");
    return failure;
}

}  // namespace tarvix
