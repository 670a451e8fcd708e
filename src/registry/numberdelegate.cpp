#include "registry/numberdelegate.h"

#include <QIntValidator>
#include <QLineEdit>

namespace
{

constexpr int largestNumber = 65535;

/** Of digits alone: the user's locale would take and put in separators of thousands. */
QLocale plainNumbers()
{
    QLocale locale = QLocale::c();
    locale.setNumberOptions(QLocale::OmitGroupSeparator | QLocale::RejectGroupSeparator);
    return locale;
}

/** By a style: where a style sheet is set, it does not look at the palette of an editor. */
void markUnacceptable(QLineEdit *editor)
{
    editor->setStyleSheet(editor->hasAcceptableInput()
                              ? QString()
                              : QStringLiteral("background: ") + incompleteColor().name());
}

} // namespace

QColor incompleteColor()
{
    return {255, 236, 179};
}

QWidget *NumberDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                      const QModelIndex &) const
{
    auto *const editor = new QLineEdit(parent);
    editor->setAlignment(Qt::AlignCenter);
    editor->setFrame(false);
    auto *const validator = new QIntValidator(1, largestNumber, editor);
    validator->setLocale(plainNumbers());
    editor->setValidator(validator);
    markUnacceptable(editor);
    connect(editor, &QLineEdit::textChanged, editor, [editor] { markUnacceptable(editor); });
    editor->setPlaceholderText(QStringLiteral("1…%1").arg(largestNumber));
    editor->setAccessibleName(tr("Номер прибора"));
    return editor;
}

/** What stands for an unknown number is nothing to begin with. */
void NumberDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *const line = static_cast<QLineEdit *>(editor);
    line->setText(index.data().toString());
    if (!line->hasAcceptableInput())
        line->clear();
}

void NumberDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                  const QModelIndex &index) const
{
    const auto *const line = static_cast<const QLineEdit *>(editor);
    if (line->hasAcceptableInput())
        model->setData(index, line->text());
}
