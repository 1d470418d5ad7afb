// SPDX-License-Identifier: GPL-3.0-or-later
// Another program on the desk, out of whose window files are dragged: file_source FILE... It would rather
// have them moved, and says what became of them.
#include <QApplication>
#include <QDrag>
#include <QLabel>
#include <QMimeData>
#include <QUrl>
#include <iostream>

namespace
{

class Files final : public QLabel
{
public:
    explicit Files(QList<QUrl> files) : QLabel("Drag me"), files_(std::move(files))
    {
        setWindowTitle("Files");
        resize(120, 60);
    }

protected:
    void mousePressEvent(QMouseEvent*) override
    {
        auto* mime = new QMimeData;
        mime->setUrls(files_);
        // It outlives this call: the other program fetches the files when they have been dropped.
        auto* drag = new QDrag(this);
        drag->setMimeData(mime);
        const auto action = drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::MoveAction);
        std::cout << (action == Qt::CopyAction   ? "copied"
                      : action == Qt::MoveAction ? "moved"
                                                 : "nothing")
                  << std::endl;
    }

private:
    QList<QUrl> files_;
};

}

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QList<QUrl> files;
    for (const QString& path : QApplication::arguments().mid(1))
        files.append(QUrl::fromLocalFile(path));
    Files window(files);
    window.show();
    return QApplication::exec();
}
