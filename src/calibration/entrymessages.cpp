#include "calibration/entrymessages.h"

#include "widgets/userdialogs.h"

#include <QCoreApplication>
#include <QPointer>

namespace
{

struct EntryTexts {
    Q_DECLARE_TR_FUNCTIONS(ReferenceEntry)
};

} // namespace

bool isChangeWanted(QWidget *tab, const QString &warning)
{
    const QPointer<QWidget> askingTab(tab);
    const Message question{QMessageBox::Warning, EntryTexts::tr("Изменение опор"), warning,
                           QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Cancel};
    const bool isConfirmed = UserDialogs::current().ask(tab, question) == QMessageBox::Ok;
    return isConfirmed && askingTab;
}

void tellWrongEntry(QWidget *tab)
{
    const Message message{
        QMessageBox::Warning, EntryTexts::tr("Ошибка ввода опор"),
        EntryTexts::tr("Не верные коэффициенты!\nПроверьте введённые значения и повторите "
                       "попытку.")};
    UserDialogs::current().tell(tab, message);
}
