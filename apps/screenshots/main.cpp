// Draws the query panel in the states that the documentation shows, into png files.
#include "scenes.h"

#include "lumora/widgets/querypanelwidget.h"
#include "lumora/widgets/subquerydialog.h"

#include <QApplication>
#include <QDir>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>

#include <cstdio>
#include <functional>
#include <vector>

namespace lumora {

namespace {

struct Picture {
    QString name;
    QSize size; // empty: of the sub-query dialog
    std::function<void(Scene&)> fill;
    bool isDark = false;
    std::function<void(QueryPanelWidget&)> pose = {}; // once it is on the screen
};

QPalette darkPalette() {
    QPalette palette(QColor(0x2B, 0x2D, 0x30));
    palette.setColor(QPalette::Base, QColor(0x1E, 0x1F, 0x22));
    palette.setColor(QPalette::Text, QColor(0xDF, 0xE1, 0xE5));
    palette.setColor(QPalette::WindowText, QColor(0xDF, 0xE1, 0xE5));
    palette.setColor(QPalette::ButtonText, QColor(0xDF, 0xE1, 0xE5));
    palette.setColor(QPalette::Highlight, QColor(0x35, 0x74, 0xF0));
    palette.setColor(QPalette::Link, QColor(0x6C, 0xB2, 0xFF));
    palette.setColor(QPalette::PlaceholderText, QColor(0x9D, 0xA0, 0xA8));
    return palette;
}

void showOptions(Scene& scene, TQPAppearanceOptions more) {
    TQPAppearance& looks = scene.panel().GetAppearance();
    looks.SetOptions(looks.GetOptions() + more);
}

void openFirstField(QueryPanelWidget& widget) {
    widget.clickWord(1, 1);
}

void sendMouse(QWidget& target, QEvent::Type type, const QPoint& position) {
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, position, target.mapToGlobal(position), button, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&target, &event);
}

// The first condition, on its way behind the last one of the bracket.
void dragARow(QueryPanelWidget& widget) {
    const QPoint from = widget.wordRect(1, 0).center();
    sendMouse(*widget.viewport(), QEvent::MouseButtonPress, from);
    sendMouse(*widget.viewport(), QEvent::MouseMove,
              {widget.wordRect(4, 0).center().x() + 4, widget.lineRect(5).bottom()});
}

std::vector<Picture> pictures() {
    const auto andOr = [](Scene& scene) {
        scene.addTwelve();
        scene.panel().GetAppearance().SetStyle(psAndOr);
        showOptions(scene, {aoShowCheckBoxes, aoRoundButtons});
    };
    return {
        {"empty", {420, 80}, [](Scene&) {}},
        {"twelve-rows", {520, 322}, &Scene::addTwelve},
        {"dark", {520, 322}, &Scene::addTwelve, true},
        {"and-or", {560, 302}, andOr},
        {"and-or-dark", {560, 302}, andOr, true},
        {"scaled", {430, 166}, &Scene::addFew},
        {"nested", {480, 300}, &Scene::addNested},
        {"long", {520, 104}, &Scene::addLong},
        {"problems", {420, 146}, &Scene::addProblems},
        {"editor", {520, 430}, &Scene::addFew, false, openFirstField},
        {"drag", {430, 166}, &Scene::addFew, false, dragARow},
        {"sub-query", {}, &Scene::addFew},
    };
}

// The widget, and over it the editor that is open.
QPixmap grabWithPopup(QueryPanelWidget& widget) {
    QPixmap picture = widget.grab();
    if (DropDownPopup* const popup = widget.popup()) {
        QPainter painter(&picture);
        painter.drawPixmap(widget.mapFromGlobal(popup->pos()), popup->grab());
    }
    return picture;
}

QPixmap grabWidget(Scene& scene, const Picture& picture) {
    QueryPanelWidget widget;
    widget.setPanel(&scene.panel());
    widget.resize(picture.size);
    widget.show();
    widget.activateWindow();
    widget.setFocus();
    QCoreApplication::processEvents();
    if (picture.pose)
        picture.pose(widget);
    QCoreApplication::processEvents();
    return grabWithPopup(widget);
}

QPixmap grabSubQuery(Scene& scene) {
    TdlgSubQuery dialog;
    dialog.SetParentQPanel(scene.panel());
    TStringList lines;
    scene.panel().SaveToStrings(lines);
    dialog.LoadQuery(lines);
    dialog.FormShow();
    SubQueryDialog window(dialog);
    window.show();
    window.activateWindow();
    QCoreApplication::processEvents();
    return window.grab();
}

bool draw(const Picture& picture, const QString& model, const QDir& folder) {
    QApplication::setPalette(picture.isDark ? darkPalette() : QApplication::style()->standardPalette());
    Scene scene(model.toStdString());
    picture.fill(scene);
    const QPixmap pixmap = picture.size.isEmpty() ? grabSubQuery(scene) : grabWidget(scene, picture);
    const QString file = folder.filePath("panel-" + picture.name + ".png");
    const QImage image = pixmap.toImage().convertToFormat(QImage::Format_RGB888);
    if (image.save(file, "png", 0))
        return true;
    std::fprintf(stderr, "Cannot write %s\n", qPrintable(file));
    return false;
}

} // namespace

} // namespace lumora

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (application.arguments().size() < 3) {
        std::fprintf(stderr, "Usage: lumora_screenshots MODEL FOLDER [PICTURE...]\n");
        return 2;
    }
    QApplication::setStyle("Fusion");
    QFont font("DejaVu Sans");
    font.setPixelSize(13);
    QApplication::setFont(font);
    const QStringList names = application.arguments().mid(3);
    bool isWritten = true;
    try {
        for (const lumora::Picture& picture : lumora::pictures())
            if (names.isEmpty() || names.contains(picture.name))
                isWritten &=
                    lumora::draw(picture, application.arguments().at(1), QDir(application.arguments().at(2)));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return isWritten ? 0 : 1;
}
