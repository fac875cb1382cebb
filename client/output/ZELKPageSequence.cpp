#include "ZELKPageSequence.h"

#include <algorithm>

ZELKPageSequence ZELKPageSequence::of(const QPrinter &printer, qint64 pages)
{
    ZELKPageSequence sequence{pages};
    if (printer.printRange() == QPrinter::PageRange) {
        sequence.from = printer.fromPage();
        sequence.to = printer.toPage();
    }
    sequence.copies = printer.supportsMultipleCopies() ? 1 : printer.copyCount();
    sequence.isCollated = printer.collateCopies();
    sequence.isLastFirst = printer.pageOrder() == QPrinter::LastPageFirst;
    return sequence;
}

QList<qint64> ZELKPageSequence::pageNumbers() const
{
    const qint64 last = to > 0 ? std::min(qint64(to), pages) : pages;
    QList<qint64> numbers;
    for (qint64 page = std::max(from, 1); page <= last; ++page)
        for (int copy = 0; copy < (isCollated ? 1 : copies); ++copy)
            numbers.append(page);
    if (isLastFirst)
        std::reverse(numbers.begin(), numbers.end());
    const QList<qint64> once = numbers;
    for (int copy = 1; isCollated && copy < copies; ++copy)
        numbers.append(once);
    return numbers;
}
