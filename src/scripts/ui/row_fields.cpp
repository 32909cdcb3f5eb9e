#include "scripts/ui/row_fields.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QSignalBlocker>
#include <QTextCursor>
#include <QTextDocument>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

namespace scripts_ui {
namespace {

const QColor signal_red(0xFF, 0, 0);
const QColor light_red(0xFF, 0xC0, 0xC0);

constexpr int text_margin = 2; ///< around a comment, in pixels

/// As other programs that read the library write lines.
QString stored_form(QString shown) { return shown.replace(u'\n', QStringLiteral("\r\n")); }

} // namespace

Number_Label::Number_Label(QWidget* parent) : QLabel(parent) {
    setAlignment(Qt::AlignCenter);
    setFrameStyle(QFrame::Panel | QFrame::Raised);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Button);
    setForegroundRole(QPalette::ButtonText);
    setCursor(Qt::PointingHandCursor);
}

void Number_Label::show_state(const QString& caption, Colour colour) {
    if (text() != caption) setText(caption);
    if (std::exchange(colour_, colour) == colour) return;
    QPalette palette;
    if (colour == Colour::red) {
        palette.setColor(QPalette::Button, signal_red);
        palette.setColor(QPalette::ButtonText, Qt::white);
    }
    setPalette(palette);
}

void Number_Label::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        Q_EMIT clicked(event->timestamp());
}

Break_Margin::Break_Margin(QWidget* parent) : QWidget(parent) { setCursor(Qt::PointingHandCursor); }

void Break_Margin::show_mark(Mark mark, bool current) {
    const bool same = mark == mark_ && current == current_;
    mark_ = mark;
    current_ = current;
    if (!same) update();
}

void Break_Margin::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal size = std::min(width(), height()) * 0.7;
    QRectF box(0, 0, size, size);
    box.moveCenter(QRectF(rect()).center());
    if (mark_ != Mark::none) {
        painter.setPen(QPen(signal_red, 2));
        if (mark_ == Mark::stop) painter.setBrush(signal_red);
        painter.drawEllipse(box.adjusted(1, 1, -1, -1));
    }
    if (!current_) return;
    const qreal inside = size / 4;
    box.adjust(inside, inside / 2, -inside / 2, -inside / 2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(mark_ == Mark::stop ? QBrush(Qt::white) : palette().windowText());
    painter.drawPolygon(
        QPolygonF{{box.topLeft(), box.bottomLeft(), QPointF(box.right(), box.center().y())}});
}

void Break_Margin::mouseReleaseEvent(QMouseEvent* event) {
    if (!rect().contains(event->position().toPoint())) return;
    if (event->button() == Qt::LeftButton) Q_EMIT clicked();
    if (event->button() == Qt::RightButton) Q_EMIT condition_wanted();
}

bool is_redo(const QKeyEvent& key) {
    return key.matches(QKeySequence::Redo) ||
           (key.key() == Qt::Key_Y && key.modifiers() == Qt::ControlModifier);
}

// Boxes

Entry_Box::Entry_Box(QWidget* parent) : QComboBox(parent) {
    setEditable(true);
    setFocusPolicy(Qt::StrongFocus); // the wheel belongs to the rows
    setInsertPolicy(NoInsert);
    setCompleter(nullptr);
    setMinimumContentsLength(1);
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMaxVisibleItems(20);
    // Qt takes the entry that has the text, typed or not, as chosen when the box is left.
    disconnect(lineEdit(), &QLineEdit::editingFinished, this, nullptr);
    connect(this, &QComboBox::activated, this, [this](int entry) {
        typing_ = false;
        Q_EMIT chosen(entry);
    });
    connect(lineEdit(), &QLineEdit::textEdited, this, [this](const QString& text) {
        typing_ = true;
        Q_EMIT typed(text);
    });
}

void Entry_Box::show_entry(QAbstractItemModel* entries, int entry, const QString& text) {
    const QSignalBlocker quiet(this);
    if (model() != entries) setModel(entries);
    if (currentIndex() != entry) {
        const QString kept = lineEdit()->text();
        setCurrentIndex(entry);
        if (typing_) lineEdit()->setText(kept);
    }
    shown_ = text;
    if (typing_) return;
    if (lineEdit()->text() != text) lineEdit()->setText(text);
    if (!hasFocus()) lineEdit()->setCursorPosition(0); // its beginning is seen
    if (toolTip() != text) setToolTip(text);
}

void Entry_Box::show_warm(bool warm) {
    QPalette palette;
    if (warm) {
        palette.setColor(QPalette::Base, light_red);
        palette.setColor(QPalette::Button, light_red);
        palette.setColor(QPalette::Text, Qt::black);
        palette.setColor(QPalette::ButtonText, Qt::black);
    }
    if (palette != this->palette() || warm != testAttribute(Qt::WA_SetPalette)) setPalette(palette);
}

void Entry_Box::showPopup() {
    Q_EMIT opening();
    view()->setMinimumWidth(std::min(view()->sizeHintForColumn(0) + 30, 500));
    QComboBox::showPopup();
}

void Entry_Box::end_typing() {
    if (!std::exchange(typing_, false)) return;
    const QString text = lineEdit()->text();
    lineEdit()->setText(shown_);
    Q_EMIT left(text);
    lineEdit()->setText(shown_);
}

// The box has the focus for its line of text.

void Entry_Box::focusInEvent(QFocusEvent* event) {
    QComboBox::focusInEvent(event);
    if (event->reason() == Qt::PopupFocusReason) return;
    lineEdit()->selectAll();
    if (event->reason() != Qt::MouseFocusReason) return;
    const auto select = [this] { // once more behind the click, which puts the cursor somewhere
        if (!typing_ && hasFocus()) lineEdit()->selectAll();
    };
    QMetaObject::invokeMethod(this, select, Qt::QueuedConnection);
}

void Entry_Box::focusOutEvent(QFocusEvent* event) {
    QComboBox::focusOutEvent(event);
    if (event->reason() == Qt::PopupFocusReason) return;
    end_typing();
    lineEdit()->deselect();
    lineEdit()->setCursorPosition(0);
}

void Entry_Box::drop_typing() {
    typing_ = false;
    Q_EMIT typed({});
    lineEdit()->setText(shown_);
    lineEdit()->selectAll();
}

void Entry_Box::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        end_typing();
        lineEdit()->selectAll();
    } else if (event->key() == Qt::Key_Escape && typing_) {
        drop_typing();
    } else {
        QComboBox::keyPressEvent(event);
    }
}

// Comments

Info_Field::Info_Field(QWidget* parent) : QPlainTextEdit(parent) {
    setTabChangesFocus(true);
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    document()->setDocumentMargin(text_margin);
    connect(document(), &QTextDocument::contentsChange, this, &Info_Field::note_what_came);
}

void Info_Field::show_info(const QString& info, int longest) {
    longest_ = longest;
    if (info == info_ && (hasFocus() || toPlainText() == shown_)) return;
    put(info);
}

void Info_Field::put(const QString& info) {
    const QScopedValueRollback putting(putting_, true);
    info_ = info;
    setPlainText(info);
    shown_ = toPlainText();
    came_.reset();
}

/// A document must not be changed while it tells of a change.
void Info_Field::note_what_came(int position, int removed, int added) {
    if (putting_) return;
    if (came_) {
        came_->begin = std::min(came_->begin, position);
        came_->end = std::max(came_->end + added - removed, position + added);
    } else if (stored_form(toPlainText()).size() > longest_) {
        came_ = {position, position + added};
        QMetaObject::invokeMethod(this, &Info_Field::cut_what_came, Qt::QueuedConnection);
    }
}

void Info_Field::cut_what_came() {
    if (!came_) return;
    const QString all = toPlainText();
    auto too_long = stored_form(all).size() - longest_;
    const auto [first, last] = *came_;
    const int end = std::min(last, static_cast<int>(all.size()));
    int begin = end;
    for (; begin > first && too_long > 0; --begin) too_long -= all[begin - 1] == u'\n' ? 2 : 1;
    if (begin > first && all[begin - 1].isHighSurrogate()) --begin;
    QTextCursor cursor(document());
    cursor.setPosition(begin);
    cursor.setPosition(end, QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    document()->clearUndoRedoStacks(); // else undo would bring it here again
    came_.reset();
    Q_EMIT cut(longest_);
}

void Info_Field::show_single_line(bool single) {
    setLineWrapMode(single ? NoWrap : WidgetWidth);
    setVerticalScrollBarPolicy(single ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAsNeeded);
    centre_line();
}

/// A single line stands as high as those of the boxes beside it.
void Info_Field::centre_line() {
    const int line = fontMetrics().lineSpacing() + 2 * text_margin;
    const bool single = lineWrapMode() == NoWrap;
    const int above = single ? std::max(0, (height() - 2 * frameWidth() - line) / 2) : 0;
    if (viewportMargins().top() != above) setViewportMargins(0, above, 0, 0);
}

void Info_Field::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    centre_line();
}

void Info_Field::commit() {
    cut_what_came();
    document()->clearUndoRedoStacks(); // from here on it is the script's to be undone
    const QString now = toPlainText();
    if (std::exchange(shown_, now) == now) return;
    info_ = stored_form(now);
    Q_EMIT committed(info_);
}

bool Info_Field::has_line(QTextCursor::MoveOperation beside) const {
    return textCursor().movePosition(beside);
}

void Info_Field::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && event->modifiers() != Qt::ShiftModifier) {
        commit();
        Q_EMIT entered();
        return;
    }
    if (event->key() == Qt::Key_Escape && toPlainText() != shown_) {
        put(info_);
        return;
    }
    if (is_redo(*event)) return redo();
    const bool with_command = (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) != 0;
    const bool letter = !event->text().isEmpty() && event->text().front().isPrint();
    if (enter || (letter && !with_command)) {
        const QString wanted = enter ? QStringLiteral("\n") : event->text();
        if (with_room(wanted) != wanted) return Q_EMIT cut(longest_);
    }
    QPlainTextEdit::keyPressEvent(event);
}

/// As much of a text as may take the place of what is selected.
QString Info_Field::with_room(const QString& text) const {
    const QTextCursor at = textCursor();
    QString rest = toPlainText();
    rest.remove(at.selectionStart(), at.selectionEnd() - at.selectionStart());
    auto room = longest_ - stored_form(rest).size();
    qsizetype taken = 0;
    for (; taken < text.size(); ++taken) {
        room -= text[taken] == u'\n' ? 2 : 1;
        if (room < 0) break;
    }
    if (taken > 0 && taken < text.size() && text[taken - 1].isHighSurrogate()) --taken;
    return text.first(taken);
}

void Info_Field::insertFromMimeData(const QMimeData* source) {
    const QString given = source->text().replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    const QString taken = with_room(given);
    if (!taken.isEmpty()) insertPlainText(taken);
    if (taken != given) Q_EMIT cut(longest_);
}

void Info_Field::focusOutEvent(QFocusEvent* event) {
    QPlainTextEdit::focusOutEvent(event);
    if (event->reason() == Qt::PopupFocusReason) return;
    commit();
    if (event->reason() != Qt::ActiveWindowFocusReason)
        moveCursor(QTextCursor::Start); // its beginning is seen
}

} // namespace scripts_ui
