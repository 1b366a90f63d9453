// A window file: Qt Widgets are its business.
#include <QWidget>
