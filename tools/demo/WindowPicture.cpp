#include "WindowPicture.h"

#include <QApplication>
#include <QDialog>
#include <QList>
#include <QPainter>
#include <QPixmap>
#include <QWidget>

#include <algorithm>
#include <utility>

namespace {

void drawDialog(QPainter& painter, const QImage& picture, const QPoint& origin, QWidget* dialog)
{
    const QPixmap contents = dialog->grab();
    // Offscreen windows have no frame: a caption bar says which dialog it is.
    const int captionHeight = dialog->fontMetrics().height() + 8;
    QPoint at = dialog->mapToGlobal(QPoint(0, 0)) - origin;
    // Kept whole inside the picture, wherever the window system placed it.
    at.setX(qBound(0, at.x(), qMax(0, picture.width() - contents.width())));
    at.setY(qBound(captionHeight, at.y(), qMax(captionHeight, picture.height() - contents.height())));

    const QPalette& palette = dialog->palette();
    const QRect caption(at.x(), at.y() - captionHeight, contents.width(), captionHeight);
    painter.fillRect(caption, palette.color(QPalette::Highlight));
    painter.setPen(palette.color(QPalette::HighlightedText));
    painter.setFont(dialog->font());
    painter.drawText(caption.adjusted(8, 0, -8, 0), Qt::AlignVCenter | Qt::AlignLeft, dialog->windowTitle());
    painter.drawPixmap(at, contents);
    painter.setPen(palette.color(QPalette::Shadow));
    painter.drawRect(
        QRect(caption.topLeft(), QSize(contents.width(), contents.height() + captionHeight)).adjusted(0, 0, -1, -1));
}

} // namespace

QImage windowPicture(QWidget* window)
{
    QImage picture = window->grab().toImage();
    QList<QWidget*> dialogs;
    for (QWidget* candidate : QApplication::topLevelWidgets()) {
        if (candidate != window && candidate->isVisible() && qobject_cast<QDialog*>(candidate))
            dialogs.append(candidate);
    }
    std::stable_partition(dialogs.begin(), dialogs.end(),
                          [](const QWidget* dialog) { return dialog != QApplication::activeModalWidget(); });

    QPainter painter(&picture);
    const QPoint origin = window->mapToGlobal(QPoint(0, 0));
    for (QWidget* dialog : std::as_const(dialogs))
        drawDialog(painter, picture, origin, dialog);
    return picture;
}
