// The Ui port over Qt dialogs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/QtUi.h"

#include <array>

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QStringList>
#include <QTextStream>
#include <QThread>
#include <QVBoxLayout>

namespace kelvar::platform
{
namespace
{

QString Text(const std::string& text)
{
    return QString::fromLocal8Bit(text.data(), static_cast<qsizetype>(text.size()));
}

std::string Native(const QString& text)
{
    const QByteArray bytes = text.toLocal8Bit();
    return std::string(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

QMessageBox::Icon IconOf(MessageIcon icon)
{
    switch (icon)
    {
    case MessageIcon::Stop:
        return QMessageBox::Critical;
    case MessageIcon::Exclamation:
        return QMessageBox::Warning;
    case MessageIcon::Question:
        return QMessageBox::Question;
    default:
        return QMessageBox::NoIcon;
    }
}

} // namespace

QtUi::QtUi(QWidget* owner) : Owner(owner)
{
    qApp->installEventFilter(this);
    // A long operation never waits for input; when the application does, none is running.
    if (QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance())
    {
        connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this,
                [this] { EscapePressed = false; });
    }
}

QtUi::~QtUi()
{
    if (qApp != nullptr)
    {
        qApp->removeEventFilter(this);
    }
}

void QtUi::SetOwner(QWidget* owner)
{
    Owner = owner;
}

void QtUi::SetStatusSink(std::function<void(const std::string&)> sink)
{
    StatusSink = std::move(sink);
}

int QtUi::Show(const Message& message)
{
    QMessageBox box(IconOf(message.Icon), Text(message.Title), QString(), QMessageBox::NoButton,
                    Owner);
    QStringList lines;
    for (const std::string& line : message.Lines)
    {
        lines << Text(line);
    }
    if (message.Centered)
    {
        // The multi-line form centres its lines.
        QStringList html;
        for (const QString& line : lines)
        {
            html << line.toHtmlEscaped().replace('\n', "<br>");
        }
        box.setTextFormat(Qt::RichText);
        box.setText("<div align=\"center\">" + html.join("<br>") + "</div>");
    }
    else
    {
        box.setTextFormat(Qt::PlainText);
        box.setText(lines.join('\n'));
    }
    QPushButton* affirmative = nullptr;
    QPushButton* negative = nullptr;
    QPushButton* third = nullptr;
    switch (message.Buttons)
    {
    case MessageButtons::Ok:
        affirmative = box.addButton(QMessageBox::Ok);
        break;
    case MessageButtons::YesNo:
        affirmative = box.addButton(QMessageBox::Yes);
        negative = box.addButton(QMessageBox::No);
        break;
    case MessageButtons::OkCancel:
        affirmative = box.addButton(QMessageBox::Ok);
        negative = box.addButton(QMessageBox::Cancel);
        break;
    case MessageButtons::YesNoCancel:
        affirmative = box.addButton(QMessageBox::Yes);
        negative = box.addButton(QMessageBox::No);
        third = box.addButton(QMessageBox::Cancel);
        break;
    }
    const std::array<QPushButton*, 3> buttons = {affirmative, negative, third};
    for (std::size_t i = 0; i < message.ButtonTexts.size() && i < buttons.size(); ++i)
    {
        if (buttons[i] != nullptr)
        {
            buttons[i]->setText(Text(message.ButtonTexts[i]));
        }
    }
    box.setDefaultButton(affirmative);
    if (message.SystemModal)
    {
        box.setWindowModality(Qt::ApplicationModal);
    }
    box.exec();
    const QAbstractButton* clicked = box.clickedButton();
    if (clicked == affirmative)
    {
        return 1;
    }
    if (third != nullptr && clicked == third)
    {
        return 2;
    }
    return 0;
}

void QtUi::ShowTextFile(const std::string& caption, const std::filesystem::path& file)
{
    QDialog dialog(Owner);
    dialog.setWindowTitle(Text(caption));
    auto* layout = new QVBoxLayout(&dialog);
    auto* text = new QPlainTextEdit(&dialog);
    text->setReadOnly(true);
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    text->setFont(QFont("Monospace"));
    QFile in(QString::fromStdString(file.string()));
    if (in.open(QIODevice::ReadOnly | QIODevice::Text))
    {
        text->setPlainText(QTextStream(&in).readAll());
    }
    layout->addWidget(text);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, &dialog);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    layout->addWidget(buttons);
    dialog.resize(720, 420);
    dialog.exec();
}

QString QtUi::DialogFilter(const std::string& filter)
{
    // "Name|pattern|Name|pattern|" pairs.
    const QStringList parts = Text(filter).split('|', Qt::SkipEmptyParts);
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2)
    {
        QString name = parts[i];
        const QString patterns = parts[i + 1];
        QStringList globs = patterns.split(';', Qt::SkipEmptyParts);
        const qsizetype open = name.indexOf('(');
        if (open >= 0)
        {
            name = name.left(open).trimmed();
        }
        // Linux file names keep their case: offer both spellings of each pattern.
        QStringList both;
        for (const QString& glob : globs)
        {
            both << glob.toLower() << glob.toUpper();
        }
        both.removeDuplicates();
        filters << name + " (" + both.join(' ') + ")";
    }
    filters << "All files (*)";
    return filters.join(";;");
}

std::optional<std::filesystem::path> QtUi::ChooseFile(const FileChoice& choice)
{
    const QString start = QString::fromStdString(choice.InitialPath.string());
    const QString picked = choice.ForSaving
                               ? QFileDialog::getSaveFileName(Owner, Text(choice.Caption), start,
                                                              DialogFilter(choice.Filter))
                               : QFileDialog::getOpenFileName(Owner, Text(choice.Caption), start,
                                                              DialogFilter(choice.Filter));
    if (picked.isEmpty())
    {
        return std::nullopt;
    }
    const std::string path = picked.toStdString();
    if (path.size() > choice.NameLimit)
    {
        return std::nullopt;
    }
    return std::filesystem::path(path);
}

std::vector<std::filesystem::path> QtUi::ChooseFiles(const FileChoice& choice)
{
    const QStringList picked = QFileDialog::getOpenFileNames(
        Owner, Text(choice.Caption), QString::fromStdString(choice.InitialPath.string()),
        DialogFilter(choice.Filter));
    std::vector<std::filesystem::path> files;
    for (const QString& name : picked)
    {
        const std::string path = name.toStdString();
        if (path.size() <= choice.NameLimit)
        {
            files.emplace_back(path);
        }
    }
    return files;
}

void QtUi::SetBrowser(std::function<std::optional<std::string>(const BrowseRequest&)> opener)
{
    Browser = std::move(opener);
}

std::optional<std::string> QtUi::Browse(const BrowseRequest& request)
{
    return Browser ? Browser(request) : Ui::Browse(request);
}

std::optional<int> QtUi::ChooseFromList(const std::string& caption,
                                        const std::vector<std::string>& items)
{
    QDialog dialog(Owner);
    dialog.setWindowTitle(Text(caption));
    auto* layout = new QVBoxLayout(&dialog);
    auto* list = new QListWidget(&dialog);
    list->setObjectName("choices");
    for (const std::string& item : items)
    {
        list->addItem(Text(item));
    }
    list->setCurrentRow(0);
    layout->addWidget(list);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    QObject::connect(list, &QListWidget::itemDoubleClicked, &dialog, &QDialog::accept);
    layout->addWidget(buttons);
    if (dialog.exec() != QDialog::Accepted || list->currentRow() < 0)
    {
        return std::nullopt;
    }
    return list->currentRow();
}

std::optional<int> QtUi::ChooseEntryAt(const std::string& caption,
                                       const std::vector<std::string>& items,
                                       const std::vector<bool>& enabled, int current)
{
    // A column of buttons, one per entry, each with its mnemonic; a greyed entry can't be
    // pressed. Escape or closing the window cancels.
    QDialog dialog(Owner);
    dialog.setWindowTitle(Text(caption));
    auto* layout = new QVBoxLayout(&dialog);
    int chosen = -1;
    for (std::size_t i = 0; i < items.size(); ++i)
    {
        auto* button = new QPushButton(Text(items[i]), &dialog);
        button->setObjectName(QString("entry%1").arg(i));
        button->setEnabled(i >= enabled.size() || enabled[i]);
        button->setStyleSheet("text-align: left; padding: 4px 12px;");
        QObject::connect(button, &QPushButton::clicked, &dialog,
                         [&dialog, &chosen, i]
                         {
                             chosen = static_cast<int>(i);
                             dialog.accept();
                         });
        layout->addWidget(button);
        if (static_cast<int>(i) == current && button->isEnabled())
        {
            button->setDefault(true);
            button->setFocus();
        }
    }
    if (dialog.exec() != QDialog::Accepted || chosen < 0)
    {
        return std::nullopt;
    }
    return chosen;
}

std::optional<int> QtUi::AskNumber(const std::string& caption, const std::string& prompt,
                                   int initial, int low, int high)
{
    bool ok = false;
    const int value =
        QInputDialog::getInt(Owner, Text(caption), Text(prompt), initial, low, high, 1, &ok);
    return ok ? std::optional<int>(value) : std::nullopt;
}

std::optional<std::string> QtUi::AskText(const std::string& caption, const std::string& prompt,
                                         const std::string& initial)
{
    bool ok = false;
    const QString value = QInputDialog::getText(Owner, Text(caption), Text(prompt),
                                                QLineEdit::Normal, Text(initial), &ok);
    return ok ? std::optional<std::string>(Native(value)) : std::nullopt;
}

void QtUi::SetStatusText(const std::string& text)
{
    if (StatusSink)
    {
        StatusSink(text);
    }
}

void QtUi::ShowProgress(const std::string& caption, const std::string& detail)
{
    if (Progress == nullptr)
    {
        Progress = new QProgressDialog(Owner);
        Progress->setRange(0, 0);
        Progress->setCancelButton(nullptr);
        Progress->setMinimumDuration(0);
        Progress->setWindowModality(Qt::WindowModal);
    }
    Progress->setWindowTitle(Text(caption));
    Progress->setLabelText(Text(caption) + "\n" + Text(detail));
    Progress->show();
    Pump();
}

void QtUi::EndProgress()
{
    delete Progress;
    Progress = nullptr;
    // The operation is over: an Escape it did not poll for is not the next one's.
    EscapePressed = false;
}

void QtUi::Pump()
{
    if (Pumping++ == 0)
    {
        PumpLoopLevel = QThread::currentThread()->loopLevel();
    }
    QApplication::processEvents();
    --Pumping;
}

bool QtUi::PollEscape()
{
    // The window stays alive while a long loop runs: events are handled here.
    Pump();
    const bool pressed = EscapePressed;
    EscapePressed = false;
    return pressed;
}

void QtUi::Beep()
{
    QApplication::beep();
}

bool QtUi::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress ||
        static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape)
    {
        return QObject::eventFilter(watched, event);
    }
    // Outside a pump the Escape belongs to whatever has the keys: a menu, a dialog, the map.
    // A dialog or menu opened during the pump runs a loop of its own, a level deeper, and a
    // menu bar's menu is a popup: their Escapes close them and stop nothing.
    const bool forOperation = Pumping > 0 &&
                              QThread::currentThread()->loopLevel() == PumpLoopLevel &&
                              QApplication::activePopupWidget() == nullptr;
    if (!forOperation)
    {
        return QObject::eventFilter(watched, event);
    }
    // Taken here, so it doesn't also close the progress panel or reach the map's keys.
    EscapePressed = true;
    return true;
}

} // namespace kelvar::platform
