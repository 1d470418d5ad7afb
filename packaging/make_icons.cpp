// SPDX-License-Identifier: GPL-3.0-or-later
// Draws the icon in several sizes, the way the program itself draws it: make_icons DRAWING FOLDER SIZE...
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <iostream>

namespace
{

bool draws(QSvgRenderer& drawing, const QString& folder, const QString& size)
{
    QImage image(size.toInt(), size.toInt(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawing.render(&painter);
    painter.end();
    return image.save(folder + "/" + size + ".png");
}

}

int main(int argc, char** argv)
{
    if (argc < 4) {
        std::cerr << "usage: make_icons DRAWING FOLDER SIZE...\n";
        return 2;
    }
    QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
    bool isDrawn = drawing.isValid();
    for (int i = 3; i < argc && isDrawn; ++i)
        isDrawn = draws(drawing, QString::fromLocal8Bit(argv[2]), argv[i]);
    return isDrawn ? 0 : 1;
}
