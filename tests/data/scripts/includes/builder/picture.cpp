// A logic file that reaches for a picture class: the include check must refuse it.
#include <QImage>
#include <QString>
