#include "app/LevelPrinter.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <algorithm>
#include <cmath>

#include "spectrum/SpectrumAnalyzer.h"

namespace corvanel {

namespace {

constexpr int printInterval = 1000;  // ms

double roundedTo(double value, double step) {
    return std::round(value / step) * step;
}

}  // namespace

QByteArray levelLine(double seconds, const std::vector<float>& levels, float left, float right,
                     const std::optional<std::string>& status) {
    const auto loudest = std::max_element(levels.begin(), levels.end());
    QJsonObject line;
    line.insert("t", roundedTo(seconds, 0.1));
    line.insert("loudestBand", loudest == levels.end() ? 0 : int(loudest - levels.begin()));
    line.insert("loudestLevel", loudest == levels.end() ? 0.0 : roundedTo(*loudest, 0.001));
    line.insert("left", roundedTo(left, 0.001));
    line.insert("right", roundedTo(right, 0.001));
    line.insert("status", status ? QJsonValue(QString::fromStdString(*status)) : QJsonValue());
    return QJsonDocument(line).toJson(QJsonDocument::Compact);
}

LevelPrinter::LevelPrinter(std::shared_ptr<SpectrumAnalyzer> analyzer, std::FILE* out)
    : analyzer_(std::move(analyzer)), out_(out) {
    started_.start();
    QObject::connect(&timer_, &QTimer::timeout, [this] { print(); });
    timer_.start(printInterval);
}

void LevelPrinter::print() {
    const QByteArray line =
        levelLine(double(started_.elapsed()) / 1000, analyzer_->levels(), analyzer_->leftLevel(),
                  analyzer_->rightLevel(), analyzer_->statusMessage());
    std::fprintf(out_, "%s\n", line.constData());
    std::fflush(out_);
}

}  // namespace corvanel
