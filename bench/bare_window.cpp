// SPDX-License-Identifier: GPL-3.0-or-later
// A window of the toolkit with one label and nothing else: what every program of the kind pays for its start.
#include <QApplication>
#include <QLabel>

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    QLabel label("Velmora");
    label.show();
    return QApplication::exec();
}
