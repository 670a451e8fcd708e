#include "widgets/userdialogs.h"

#include <QColorDialog>
#include <QPointer>
#include <QQueue>

#include <memory>

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

/** The dialog of a question, whose parent may take it away while it waits. */
template<typename Dialog>
struct Question {
    explicit Question(Dialog *asked)
        : dialog(asked)
    {
    }
    ~Question() { delete dialog; }
    Q_DISABLE_COPY(Question)

    QPointer<Dialog> dialog;
};

/** What is on the screen, and the messages that wait for their turn. */
class DialogsOnScreen : public QObject
{
public:
    QMessageBox::StandardButton ask(QWidget *parent, const Message &message)
    {
        const Question<QMessageBox> box(new QMessageBox(parent));
        fill(box.dialog, message);
        return QMessageBox::StandardButton(run(box.dialog));
    }

    void tell(QWidget *parent, const Message &message)
    {
        m_waiting.enqueue({parent, parent != nullptr, message});
        showNext();
    }

    QColor chooseColor(QWidget *parent, const QColor &current)
    {
        const Question<QColorDialog> question(new QColorDialog(current, parent));
        const bool isChosen = run(question.dialog) == QDialog::Accepted;
        return isChosen && question.dialog ? question.dialog->selectedColor() : QColor();
    }

    QString chooseFile(QWidget *parent, const FileQuestion &question)
    {
        const Question<QFileDialog> asked(
            new QFileDialog(parent, question.title, question.directory, question.filter));
        QFileDialog &dialog = *asked.dialog;
        const bool isSaving = question.mode == QFileDialog::AcceptSave;
        dialog.setAcceptMode(question.mode);
        dialog.setFileMode(isSaving ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
        dialog.setDefaultSuffix(question.defaultSuffix);
        dialog.setOption(QFileDialog::DontConfirmOverwrite, !question.asksToReplace);
        if (!question.name.isEmpty())
            dialog.selectFile(question.name);
        const bool isChosen = run(asked.dialog) == QDialog::Accepted;
        return isChosen && asked.dialog ? dialog.selectedFiles().value(0) : QString();
    }

private:
    struct Waiting {
        QPointer<QWidget> parent;
        bool hasParent;
        Message message;
    };

    int run(QDialog *question)
    {
        ++m_questions;
        const int answer = question->exec();
        --m_questions;
        if (m_box)
            m_box->activateWindow(); // it lost the keyboard to the question
        showNext();
        return answer;
    }

    void showNext()
    {
        if (m_box || m_questions > 0)
            return;
        while (!m_waiting.isEmpty() && !m_box) {
            const Waiting next = m_waiting.dequeue();
            if (next.parent || !next.hasParent)
                show(next);
        }
    }

    void show(const Waiting &next)
    {
        m_box = new QMessageBox(next.parent);
        fill(m_box, next.message);
        m_box->setAttribute(Qt::WA_DeleteOnClose);
        // later, for its parent may be about to end as well
        connect(m_box, &QObject::destroyed, this, &DialogsOnScreen::showNext, Qt::QueuedConnection);
        m_box->open();
    }

    QPointer<QMessageBox> m_box;
    QQueue<Waiting> m_waiting;
    int m_questions = 0; ///< open at present
};

} // namespace

UserDialogs &UserDialogs::current()
{
    static UserDialogs dialogs = onScreen();
    return dialogs;
}

UserDialogs UserDialogs::onScreen()
{
    const auto screen = std::make_shared<DialogsOnScreen>();
    return {
        [screen](QWidget *parent, const Message &message) { return screen->ask(parent, message); },
        [screen](QWidget *parent, const Message &message) { screen->tell(parent, message); },
        [screen](QWidget *parent, const QColor &current) {
            return screen->chooseColor(parent, current);
        },
        [screen](QWidget *parent, const FileQuestion &question) {
            return screen->chooseFile(parent, question);
        }};
}
