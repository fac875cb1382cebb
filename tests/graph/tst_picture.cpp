// The graph's picture: what is where in it, how near it comes to one drawn without haste, and its files.
#include "GraphFixture.h"
#include "NamedRows.h"
#include "PlainPicture.h"
#include "ZELKBoxBlur.h"
#include "ZELKDisplayListPainter.h"
#include "ZELKGraphImage.h"
#include "ZELKLWCEntriesCell.h"

#include <QFile>
#include <QRandomGenerator>

#include <tiffio.h>

namespace {

QImage white(QSizeF size, double scale, QImage::Format format = QImage::Format_RGB32)
{
    QImage image((size * scale).toSize(), format);
    image.fill(Qt::white);
    return image;
}

/// Mean difference of a picture's colours from one `times` finer, of 255.
double errorOf(const QImage &image, const QImage &finer, int times)
{
    double sum = 0.0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            float mean[3] = {};
            for (int i = 0; i < times * times; ++i) {
                const QColor colour = finer.pixelColor(x * times + i % times, y * times + i / times);
                mean[0] += colour.redF();
                mean[1] += colour.greenF();
                mean[2] += colour.blueF();
            }
            const float share = 255.0F / float(times * times);
            const QRgb pixel = image.pixel(x, y);
            sum += double(std::abs(float(qRed(pixel)) - mean[0] * share) +
                          std::abs(float(qGreen(pixel)) - mean[1] * share) +
                          std::abs(float(qBlue(pixel)) - mean[2] * share));
        }
    return sum / (3.0 * image.width() * image.height());
}

/// Readings of a battery that goes up and down, sleeps and stops, all over the day.
QString busyDay(int count)
{
    QRandomGenerator random(7);
    QStringList events;
    double level = 60.0;
    double slope = -1.0;
    for (int i = 0; i < count; ++i) {
        const double hours = 24.0 * i / count;
        slope = level < 5.0 ? 1.0 : level > 98.0 ? -1.0 : random.bounded(40) == 0 ? -slope : slope;
        level = std::clamp(level + slope * random.bounded(300.0 / count + 0.6), 0.0, 100.0);
        const int kind = random.bounded(10);
        const QString word = kind == 0   ? u"sleep"_s
                             : kind == 1 ? u"wake"_s
                             : kind == 2 ? u"off"_s
                             : kind == 3 ? u"on"_s
                                         : (slope > 0.0 ? u"a%1"_s : u"b%1"_s).arg(int(level));
        events.append(u"%1:%2"_s.arg(hours, 0, 'f', 5).arg(word));
    }
    return events.join(u' ');
}

} // namespace

class TestPicture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsWhere_data()
    {
        const NamedRows<double> row("scale");
        row("one pixel a point", 1.0);
        row("two pixels a point", 2.0);
        row("a broken number", 1.25);
    }
    void whatIsWhere()
    {
        QFETCH(double, scale);
        const GraphFixture fixture(u"-1:b80 3:sleep 9:wake 12:b40 14:b40 25:b20"_s);
        const ZELKGraphDrawing drawing({&fixture.log, &fixture.range, true, true, {}, {}}, {600, 240}, scale);
        const QRectF chart = drawing.layout().chartRect;
        const auto colourAt = [&](double x, double y) {
            return QColor(drawing.image().pixel(int(x * scale), int((240.0 - y) * scale)));
        };
        const auto inChart = [&](double hours, double percentage) {
            return colourAt(chart.x() + hours / 24.0 * chart.width(),
                            chart.y() + percentage / 100.0 * chart.height());
        };
        QCOMPARE(drawing.image().size(), (QSizeF(600, 240) * scale).toSize());
        QCOMPARE(colourAt(5, 120), QColor(Qt::white));
        QVERIFY(colourAt(0, 120).lightness() < 200);                             // the border
        QVERIFY(colourAt(chart.right() - 5, chart.y() + 0.8).lightness() < 110); // the axis

        const QColor high = inChart(5, 95);
        const QColor low = inChart(5, 10);
        QVERIFY(high.blue() > high.red() + 30 && high.lightness() < 130);
        QVERIFY(low.lightness() > high.lightness() + 20);
        QVERIFY(inChart(2.8, 95).lightness() > 245); // awake, above the curve
        const QColor curve = inChart(13, 40);
        QVERIFY(curve.red() > 200 && curve.blue() < 80);
        const QColor area = inChart(13, 15);
        QVERIFY(area.red() > area.blue() + 15 && area.lightness() > 200);
        // Below the curve's shadow the paper is a little darker.
        QVERIFY(colourAt(chart.center().x(), chart.y() - 10).lightness() < 253);
        QCOMPARE(drawing.ticks().labels.front().text, u"02:00 AM"_s);
    }

    void aroundTheChart_data() { whatIsWhere_data(); }
    void aroundTheChart()
    {
        QFETCH(double, scale);
        const GraphFixture fixture(u"-1:b80 3:sleep 9:wake 25:b80"_s);
        const QSizeF size(600, 240);
        const auto draw = [&](bool titled) {
            return ZELKGraphDrawing({&fixture.log, &fixture.range, titled, false, {}, {}}, size, scale);
        };
        const ZELKGraphDrawing drawing = draw(true);
        const auto &[frame, media, title, yLabel, chart, padding, textPadding, textHeight, axis] =
            drawing.layout();
        const ZELKPixelSpace space{size.height(), scale};
        const auto darkest = [&](const QImage &image, const QRectF &rect) {
            const QRectF turned = space.turned(rect);
            const QRect pixels = QRectF(turned.topLeft() * scale, turned.size() * scale).toRect();
            int least = 255;
            for (int y = pixels.top(); y <= pixels.bottom(); ++y)
                for (int x = pixels.left(); x <= pixels.right(); ++x)
                    least = std::min(least, qGray(image.pixel(x, y)));
            return least;
        };
        const auto inked = [&](const QRectF &rect) { return darkest(drawing.image(), rect) < 150; };
        QVERIFY(inked(title));
        QVERIFY(darkest(draw(false).image(), {title.x(), 0.0, title.width(), 9.0}) > 240);
        QVERIFY(inked(QRectF(yLabel.x(), yLabel.y(), yLabel.width(), yLabel.height() / 2.0 - 2.0)));
        QVERIFY(inked(yLabel.translated(0.0, yLabel.height() / 2.0 + 1.0) & yLabel));
        QVERIFY(!inked({media.x(), chart.y(), yLabel.width(), yLabel.y() - chart.y() - 1.0}));

        QCOMPARE(drawing.ticks().labels.size(), 6U);
        double gap = chart.x() + 2.0;
        for (const ZELKAxisTicks::Label &label : drawing.ticks().labels) {
            QVERIFY(inked(label.rect));
            QVERIFY(!inked({gap, label.rect.y(), label.rect.x() - gap - 2.0, label.rect.height()}));
            gap = label.rect.right() + 2.0;
        }
        QCOMPARE(drawing.ticks().ticks.size(), 24U);
        for (const ZELKAxisTicks::Tick &tick : drawing.ticks().ticks) {
            QVERIFY(inked({tick.x - 0.5, chart.y() - 3.0, 1.0, 2.0}));
            QVERIFY(!inked({tick.x + 3.0, chart.y() - 3.0, 4.0, 2.0}));
        }
        // Between awake and the curve: dots at every fifth, none between them.
        for (int percent = 10; percent <= 100; percent += 10) {
            const double y = chart.y() + percent / 100.0 * chart.height();
            const int grey = darkest(drawing.image(), {chart.right() - 60.0, y - 1.0, 40.0, 2.0});
            if (percent != 80)
                QCOMPARE(grey < 225, percent % 20 == 0);
        }
    }

    void colours_data()
    {
        const NamedRows<QPoint, QRgb> row("place", "colour");
        row("off, above", {20, 20}, 0x2d3041);
        row("off, below", {20, 99}, 0x4b5585);
        row("asleep, above", {120, 20}, 0x53518a);
        row("asleep, below", {120, 99}, 0x645fc1);
        row("unmonitored, above", {5, 20}, 0x9c9c9c);
        row("unmonitored, below", {5, 99}, 0xb5b5b5);
        row("asleep over off", {45, 99}, 0x2c2a9c);
        row("unmonitored over both", {65, 99}, 0x363579);
        row("a state without colour", {150, 50}, 0xffffff);
        row("on mains", {165, 70}, 0x00ff00);
        row("on battery", {185, 70}, 0xff8000);
    }
    void colours()
    {
        QFETCH(QPoint, place);
        QFETCH(QRgb, colour);
        // Blocks from row 10 to row 110; in the order of adding the wrong one would lie on top.
        auto list = ZELKLWCEntriesViewDisplayList::displayList();
        const auto block = [](double from, double to) { return QRectF(from, 11.0, to - from, 100.0); };
        list.addState({block(55, 80), u"Unmonitored"_s, nullptr});
        list.addState({block(10, 0), u"Unmonitored"_s, nullptr}); // backwards, left of the chart
        list.addState({block(30, 140), u"Asleep"_s, nullptr});
        list.addState({block(15, 90), u"Off"_s, nullptr});
        list.addState({block(142, 160), u"On"_s, nullptr});
        const auto curve = [&list](const QString &source, double from, double to) {
            auto segment = ZELKLWCEntriesViewBatterySegment::batterySegmentForState(source, {from, 50.5});
            segment.addPoint({to, 50.5});
            list.batteries().addSegment(segment, u"BAT0"_s);
        };
        curve(u"Disconnected"_s, 142, 160);
        curve(u"AC Power"_s, 160, 170);
        curve(u"Battery Power"_s, 180, 190);
        QImage image = white({200, 121}, 1.0);
        ZELKDisplayListPainter(image, {121, 1.0}, {{12, 10, 180, 101}, {}, 1.0}).paint(list);
        const QRgb found = image.pixel(place);
        const int difference =
            std::max({std::abs(qRed(found) - qRed(colour)), std::abs(qGreen(found) - qGreen(colour)),
                      std::abs(qBlue(found) - qBlue(colour))});
        QVERIFY2(difference <= 2, qPrintable(QColor(found).name()));
    }

    void beyondTheDayItIsPaintedAsItStands()
    {
        // Its last duplicate is of the next day: the block ends at the view's edge, over the label there.
        const GraphFixture fixture(u"-1:b80 1:off 3:on 25:b80 30:boot"_s);
        const ZELKGraphDrawing drawing({&fixture.log, &fixture.range, true, false, {}, {}}, {600, 240}, 1.0);
        const auto lightness = [&](double x) {
            return QColor(drawing.image().pixel(int(x), 239 - int(drawing.layout().chartRect.bottom()) + 8))
                .lightness();
        };
        const QRectF chart = drawing.layout().chartRect;
        QVERIFY(lightness(1) < 90);
        QVERIFY(lightness(chart.x() + chart.width() / 48.0) < 90);
        QVERIFY(lightness(chart.x() + chart.width() / 6.0) > 240);
    }

    void withoutHaste_data()
    {
        const NamedRows<int> row("events");
        row("few events", 40);
        row("one for each pixel", 300);
        row("many for each pixel", 6000);
    }
    void withoutHaste()
    {
        QFETCH(int, events);
        constexpr QSizeF size(260, 110);
        GraphFixture fixture(busyDay(events));
        fixture.scale.chartRect = QRectF(12, 10, 236, 90);
        fixture.show(0, 1);
        auto merged = ZELKLWCEntriesViewDisplayList::displayList(ZELKGraphDrawing::coarsest);
        ZELKDisplayListBuilder(merged, fixture.scale, fixture.log).prepareDisplayList();
        QImage image = white(size, 1.0);
        ZELKDisplayListPainter(image, {size.height(), 1.0}, fixture.scale).paint(merged);

        const auto plain = [&](double scale, QImage::Format format) {
            QImage picture = white(size, scale, format);
            PlainPicture::paint(picture, {size.height(), scale}, fixture.list, fixture.scale.chartRect);
            return picture;
        };
        const QImage finer = plain(4.0, QImage::Format_RGBX64);
        const double error = errorOf(image, finer, 4);
        const double plainError = errorOf(plain(1.0, QImage::Format_RGB32), finer, 4);
        qInfo("error %.3f, plain %.3f", error, plainError);
        QVERIFY(error <= 1.1 * plainError);
    }

    void bandsAreNotSeen()
    {
        const GraphFixture fixture(u"-1:b80 12:b5 14:a5 25:a100"_s);
        // So large that it takes several bands; the first ends at row 1398.
        const QImage image =
            ZELKGraphDrawing({&fixture.log, &fixture.range, false, false, {}, {}}, {3000, 3000}, 1.0).image();
        // Late in the day, far below the curve, nothing is to be seen but its faint area.
        for (const int x : {2700, 2900})
            for (int y = 1350; y < 1700; ++y)
                QVERIFY(std::abs(qGreen(image.pixel(x, y)) - qGreen(image.pixel(x, y - 1))) <= 1);
    }

    void blur()
    {
        constexpr int side = 161;
        constexpr double deviation = 9.0;
        const ZELKBoxBlur blur(deviation);
        for (const bool across : {false, true}) {
            const auto place = [across](int along) {
                return std::size_t(across ? along * side + side / 2 : side / 2 * side + along);
            };
            std::vector<float> values(side * side, 0.0F);
            for (int i = 0; i < side * side; ++i)
                values[std::size_t(i)] = (across ? i / side : i % side) < side / 2 ? 1.0F : 0.0F;
            blur.blur(values, side, side);
            // What a bell curve makes of an edge; there is nothing beyond the border.
            for (int i = 2 * blur.reach(); i < side; ++i) {
                const double distance = side / 2 - 0.5 - i;
                const double expected = 0.5 * std::erfc(-distance / (deviation * std::sqrt(2.0)));
                QVERIFY(std::abs(double(values[place(i)]) - expected) < 0.015);
            }
            QCOMPARE(values[place(side / 2 + blur.reach())], 0.0F);
        }
    }

    void drawnAnewOnlyWhenNeeded()
    {
        const GraphFixture fixture(u"3:sleep 9:wake"_s);
        ZELKLWCEntriesCell cell;
        cell.setLog(&fixture.log);
        cell.setDateRange(&fixture.range);
        QImage page(400, 200, QImage::Format_RGB32);
        QPainter painter(&page);
        const auto key = [&](QRectF frame) {
            cell.drawInteriorWithFrame(painter, frame);
            return cell.drawing().image().cacheKey();
        };
        const qint64 first = key({0, 0, 400, 200});
        QCOMPARE(key({0, 0, 400, 200}), first);
        QVERIFY(!cell.dataSourceChanged());
        cell.setLabelBanner({});
        QVERIFY(!cell.dataSourceChanged());
        cell.setLabelBanner(ZELKAttributedString(u"Welcome"_s));
        QVERIFY(cell.dataSourceChanged());
        const qint64 second = key({0, 0, 400, 200});
        QVERIFY(second != first);
        QCOMPARE(cell.imageValueWithWidth(150, 160).size(), QSize(150, 160));
        QCOMPARE(key({10, 0, 400, 200}), second);
        QVERIFY(key({0, 0, 390, 200}) != second);

        QVERIFY(!cell.selectDateAtPoint({2, 2}));
        QVERIFY(!cell.selection());
        QVERIFY(cell.selectDateAtPoint(cell.chartRect().topLeft()));
        QCOMPARE(cell.selection(), std::optional(at(0)));
    }

    void labels()
    {
        ZELKTextAttributes attributes;
        attributes.colour = ZELKTextColour::rgb(200, 0, 0);
        const ZELKAttributedString label(u"MMMM"_s, attributes);
        const auto redIn = [](const QImage &image, const QRect &rect) {
            for (int y = rect.top(); y <= rect.bottom(); ++y)
                for (int x = rect.left(); x <= rect.right(); ++x)
                    if (qRed(image.pixel(x, y)) > qGreen(image.pixel(x, y)) + 60)
                        return true;
            return false;
        };
        const QImage image =
            ZELKGraphDrawing({nullptr, nullptr, true, false, label, {}}, {300, 100}, 1.0).image();
        QVERIFY(redIn(image, {0, 0, 60, 25}));
        QVERIFY(!redIn(image, {100, 0, 200, 100}));
        const QImage banner =
            ZELKGraphDrawing({nullptr, nullptr, true, false, {}, label}, {300, 100}, 1.0).image();
        QVERIFY(redIn(banner, {120, 25, 60, 30}));
        QVERIFY(!redIn(banner, {0, 0, 100, 100}));
        QVERIFY(!redIn(banner, {0, 60, 300, 40}));

        // On paper texts are dark, however dark the desktop is.
        const QPalette usual = QGuiApplication::palette();
        QPalette dark = usual;
        dark.setColor(QPalette::Text, QColor(255, 100, 100));
        QGuiApplication::setPalette(dark);
        const ZELKAttributedString plain(u"MMMM"_s);
        const QImage onPaper =
            ZELKGraphDrawing({nullptr, nullptr, true, false, plain, {}}, {300, 100}, 1.0).image();
        QGuiApplication::setPalette(usual);
        QVERIFY(!redIn(onPaper, onPaper.rect()));
    }

    void files()
    {
        const GraphFixture fixture(u"3:sleep 9:wake"_s);
        const QImage image =
            ZELKGraphDrawing({&fixture.log, &fixture.range, true, true, {}, {}}, {301, 203}, 2.0).image();
        QCOMPARE(
            QImage::fromData(ZELKGraphImage::PNGRepresentation(image)).convertToFormat(image.format()),
            QImage(image.constBits(), image.width(), image.height(), image.bytesPerLine(), image.format()));
        QVERIFY(ZELKGraphImage::PNGRepresentation({}).isEmpty());
        QVERIFY(ZELKGraphImage::TIFFRepresentation({}).isEmpty());

        const QString path = fixture.folder.filePath(u"graph.tiff"_s);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(ZELKGraphImage::TIFFRepresentation(image));
        file.close();
        QVERIFY(file.size() < image.sizeInBytes() / 8);
        const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff(TIFFOpen(path.toUtf8().constData(), "r"),
                                                               &TIFFClose);
        QVERIFY(tiff.get());
        std::uint16_t compression = 0;
        float resolution = 0.0F;
        TIFFGetField(tiff.get(), TIFFTAG_COMPRESSION, &compression);
        TIFFGetField(tiff.get(), TIFFTAG_XRESOLUTION, &resolution);
        QCOMPARE(int(compression), COMPRESSION_LZW);
        QCOMPARE(resolution, 144.0F);
        QImage read(image.size(), QImage::Format_RGBA8888);
        QVERIFY(TIFFReadRGBAImageOriented(
                    tiff.get(), std::uint32_t(read.width()), std::uint32_t(read.height()),
                    reinterpret_cast<std::uint32_t *>(read.bits()), ORIENTATION_TOPLEFT, 0) == 1);
        QCOMPARE(read.convertToFormat(image.format()).pixel(300, 200), image.pixel(300, 200));
        QCOMPARE(read.convertToFormat(image.format()).pixel(0, 405), image.pixel(0, 405));
    }
};

QTEST_MAIN(TestPicture)
#include "tst_picture.moc"
