#include "widgets/wheelguard.h"

#include <QComboBox>
#include <QEvent>

namespace
{

class WheelGuard : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        return event->type() == QEvent::Wheel && !static_cast<QWidget *>(watched)->hasFocus();
    }
};

} // namespace

void guardFromWheel(QWidget *window)
{
    auto *const guard = new WheelGuard(window);
    for (QComboBox *list : window->findChildren<QComboBox *>()) {
        list->setFocusPolicy(Qt::StrongFocus); // else a turn of the wheel gives the focus
        list->installEventFilter(guard);
    }
}
