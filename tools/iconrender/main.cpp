// iconrender: draws an SVG icon into PNG files at the sizes icon themes
// expect, at build time, so the installed hicolor sizes come from one drawing.
//
//   iconrender <icon.svg> <size>:<out.png>…

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    if (argc < 3) {
        std::fputs("usage: iconrender <icon.svg> <size>:<out.png>...\n", stderr);
        return 2;
    }
    QSvgRenderer renderer(QString::fromLocal8Bit(argv[1]));
    if (!renderer.isValid()) {
        std::fprintf(stderr, "iconrender: %s is not a drawable SVG\n", argv[1]);
        return 1;
    }
    for (int i = 2; i < argc; ++i) {
        const QString target = QString::fromLocal8Bit(argv[i]);
        const qsizetype colon = target.indexOf(u':');
        bool ok = false;
        const int size = target.first(qMax<qsizetype>(colon, 0)).toInt(&ok);
        if (!ok || size <= 0) {
            std::fprintf(stderr, "iconrender: %s is not <size>:<file>\n", argv[i]);
            return 2;
        }
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        renderer.render(&painter);
        painter.end();
        if (!image.save(target.sliced(colon + 1), "PNG")) {
            std::fprintf(stderr, "iconrender: cannot write %s\n", qPrintable(target.sliced(colon + 1)));
            return 1;
        }
    }
    return 0;
}
