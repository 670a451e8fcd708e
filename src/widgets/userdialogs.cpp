#include "widgets/userdialogs.h"

#include <QColorDialog>

namespace
{

void fill(QMessageBox *box, const Message &message)
{
    box->setIcon(message.icon);
    box->setWindowTitle(message.title);
    box->setText(message.text);
    box->setStandardButtons(message.buttons);
    box->setDefaultButton(message.defaultButton);
}

QMessageBox::StandardButton askOnScreen(QWidget *parent, const Message &message)
{
    QMessageBox box(parent);
    fill(&box, message);
    return QMessageBox::StandardButton(box.exec());
}

void tellOnScreen(QWidget *parent, const Message &message)
{
    auto *box = new QMessageBox(parent);
    fill(box, message);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

QColor chooseColorOnScreen(QWidget *parent, const QColor &current)
{
    return QColorDialog::getColor(current, parent);
}

} // namespace

UserDialogs &UserDialogs::current()
{
    static UserDialogs dialogs = onScreen();
    return dialogs;
}

UserDialogs UserDialogs::onScreen()
{
    return {askOnScreen, tellOnScreen, chooseColorOnScreen};
}
