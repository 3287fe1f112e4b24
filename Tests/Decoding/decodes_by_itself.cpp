// Everything the application must not do. It is looked at, not run.

#include <QApplication>
#include <QClipboard>
#include <QIcon>
#include <QImageReader>
#include <QMimeData>
#include <QMovie>
#include <QSvgRenderer>
#include <QTextDocument>

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const QString path = QString::fromLocal8Bit(argv[argc - 1]);
    QImage image(path);
    image.load(path);
    image = QImage::fromData(path.toUtf8());
    QPixmap pixmap(path);
    pixmap.loadFromData(path.toUtf8());
    QIcon icon(path);
    icon.addFile(path);
    const QMovie movie(path);
    const QSvgRenderer renderer(path);
    QTextDocument document;
    document.setHtml(path);
    const QClipboard *clipboard = QApplication::clipboard();
    return QImageReader(path).read().width() + clipboard->image().width() + movie.frameCount() +
           int(clipboard->mimeData()->imageData().isNull()) + renderer.framesPerSecond();
}
