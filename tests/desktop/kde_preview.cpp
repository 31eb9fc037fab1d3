// Asks KDE's preview job for one picture:  kde_preview URL SIZE OUT.png
#include <KFileItem>
#include <KIO/PreviewJob>
#include <QApplication>
#include <QPixmap>
#include <QTextStream>

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  const QStringList arguments = QApplication::arguments();
  const int side = arguments.at(2).toInt();
  const QStringList plugins{QStringLiteral("paintthumbnail")};
  const KFileItem item(QUrl(arguments.at(1)), QStringLiteral("application/x-paint-document"));
  auto* job = KIO::filePreview({item}, QSize(side, side), &plugins);
  job->setIgnoreMaximumSize(true);
  job->setScaleType(KIO::PreviewJob::Unscaled);
  QObject::connect(job, &KIO::PreviewJob::gotPreview, [&](const KFileItem&, const QPixmap& pixmap) {
    QApplication::exit(pixmap.save(arguments.at(3)) ? 0 : 1);
  });
  QObject::connect(job, &KIO::PreviewJob::failed, [&](const KFileItem&) {
    QTextStream(stderr) << "no preview: " << job->errorString() << "\n";
    QApplication::exit(1);
  });
  return QApplication::exec();
}
