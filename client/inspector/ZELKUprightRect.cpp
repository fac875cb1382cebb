#include "ZELKUprightRect.h"

#include <QRegularExpression>

#include <cmath>

namespace {

/// Beyond what window systems know, and no number for an integer to overflow with.
constexpr double farthest = 1e6;

} // namespace

QString ZELKUprightRect::string() const
{
    return QStringLiteral("{{%1, %2}, {%3, %4}}").arg(x).arg(y).arg(width).arg(height);
}

std::optional<ZELKUprightRect> ZELKUprightRect::fromString(const QString &string)
{
    static const QRegularExpression form(
        QStringLiteral(R"(\A\s*\{\{([^,{}]+),([^,{}]+)\},\s*\{([^,{}]+),([^,{}]+)\}\}\s*\z)"));
    const QRegularExpressionMatch match = form.match(string);
    if (!match.hasMatch())
        return std::nullopt;
    double numbers[4];
    for (int i = 0; i < 4; ++i) {
        bool isNumber = false;
        numbers[i] = match.capturedView(i + 1).trimmed().toDouble(&isNumber);
        if (!isNumber || !(std::abs(numbers[i]) <= farthest))
            return std::nullopt;
    }
    return ZELKUprightRect{numbers[0], numbers[1], numbers[2], numbers[3]};
}
