// A window with a label and a button: the minimum cost of a window with Qt Widgets.
#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWidget>

int main(int argumentCount, char** arguments) {
    QApplication application(argumentCount, arguments);
    QWidget window;
    QVBoxLayout layout(&window);
    QLabel label(QStringLiteral("A label that says something about as long as this."));
    QPushButton button(QStringLiteral("Close"));
    layout.addWidget(&label);
    layout.addWidget(&button);
    QObject::connect(&button, &QPushButton::clicked, &window, &QWidget::close);
    window.show();
    return QApplication::exec();
}
