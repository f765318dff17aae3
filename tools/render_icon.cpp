// Renders the SVG icon to a square PNG for desktop icon themes, which want fixed sizes
// beside the scalable one: render_icon <svg> <size> <png>. Run by the build, so the
// pictures always match the SVG.

#include <QImage>
#include <QPainter>
#include <QString>
#include <QSvgRenderer>
#include <QTextStream>

int main(int argc, char** argv) {
  if (argc != 4) {
    QTextStream(stderr) << "usage: render_icon <svg> <size> <png>\n";
    return 2;
  }
  QSvgRenderer svg(QString::fromLocal8Bit(argv[1]));
  const int size = QString::fromLocal8Bit(argv[2]).toInt();
  if (!svg.isValid() || size <= 0) {
    QTextStream(stderr) << "render_icon: cannot render " << argv[1] << " at " << argv[2] << "\n";
    return 1;
  }
  QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  svg.render(&painter);
  painter.end();
  return image.save(QString::fromLocal8Bit(argv[3]), "PNG") ? 0 : 1;
}
