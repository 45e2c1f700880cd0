#include "platform/desktop/preferences/ControlViews.h"

#include "platform/Controls.h"
#include "platform/desktop/DesktopImages.h"
#include "platform/desktop/preferences/ElidedField.h"
#include "tests/desktop/EventLoop.h"
#include "tests/desktop/preferences/AccessibleName.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <gtest/gtest.h>

namespace orvello {
namespace {

constexpr const char* markup = "<img src=x> A & B";

/// A window with one view in it.
class ControlViewsTest : public testing::Test {
  protected:
    template <class View> View& show(View* view) {
        window_.layout()->addWidget(view);
        window_.show();
        window_.activateWindow();
        EXPECT_TRUE(waitUntil([&] { return window_.isActiveWindow() && view->isVisible(); }));
        view->setFocus();
        return *view;
    }
    std::function<void()> count() {
        return [this] { ++actions_; };
    }

    QWidget window_;
    QVBoxLayout layout_{&window_};
    int actions_ = 0;
};

TEST_F(ControlViewsTest, PopUpButtonIsChosenByKeyboardAndMouse) {
    PopUpButton control;
    control.addItem("-", -1);
    control.addItem(markup, 10);
    control.setAction(count());
    auto& view = show(makePopUpButtonView(control, QStringLiteral("Interval")));
    control.addItem("20 Minutes", 20);
    ASSERT_EQ(view.count(), 3);
    EXPECT_EQ(view.itemText(1).toStdString(), markup);
    EXPECT_EQ(view.currentIndex(), -1);

    QTest::keyClick(&view, Qt::Key_Down);
    EXPECT_EQ(control.selectedTag(), -1);
    EXPECT_EQ(actions_, 1);

    view.showPopup();
    auto& list = *view.view();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                      list.visualRect(list.model()->index(2, 0)).center(), 500);
    EXPECT_TRUE(waitUntil([&] { return actions_ == 2; }));
    EXPECT_EQ(control.selectedTag(), 20);

    QWheelEvent turn({5, 5}, view.mapToGlobal(QPointF(5, 5)), {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&view, &turn);
    EXPECT_EQ(control.selectedTag(), 20);
}

TEST_F(ControlViewsTest, PopUpButtonShowsWhatTheProgramSelects) {
    PopUpButton control;
    for (const int tag : {-1, 10, 20})
        control.addItem(std::to_string(tag), tag);
    control.selectItemWithTag(10);
    control.setAction(count());
    auto& view = show(makePopUpButtonView(control, QStringLiteral("Interval")));
    const struct {
        const char* name;
        std::int64_t tag;
        int index;
    } rows[] = {{"first", -1, 0}, {"last", 20, 2}, {"no item has it", 45, -1}, {"again one", 10, 1}};
    EXPECT_EQ(view.currentIndex(), 1);
    for (const auto& row : rows) {
        control.selectItemWithTag(row.tag);
        EXPECT_EQ(view.currentIndex(), row.index) << row.name;
        EXPECT_EQ(control.selectedTag().has_value(), row.index >= 0) << row.name;
    }
    EXPECT_EQ(actions_, 0);
}

TEST_F(ControlViewsTest, CheckBoxFollowsTheUserUnlessTheProgramRefuses) {
    CheckBox control;
    control.setOn(true);
    control.setAction(count());
    auto& view = show(makeCheckBoxView(control, QStringLiteral("A & B")));
    EXPECT_TRUE(view.isChecked());
    EXPECT_EQ(accessibleName(view), "A & B");
    control.setOn(false);
    EXPECT_FALSE(view.isChecked());
    EXPECT_EQ(actions_, 0);

    QTest::keyClick(&view, Qt::Key_Space);
    EXPECT_TRUE(control.isOn());
    QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(5, view.height() / 2));
    EXPECT_FALSE(control.isOn());
    EXPECT_EQ(actions_, 2);

    control.setAction([&] { control.setOn(false); });
    QTest::keyClick(&view, Qt::Key_Space);
    EXPECT_FALSE(view.isChecked());
}

TEST_F(ControlViewsTest, ButtonIsPressedByKeyboardAndMouse) {
    Button control;
    control.setAction(count());
    auto& view = show(makeButtonView(control, QStringLiteral("A & B")));
    EXPECT_EQ(accessibleName(view), "A & B");
    QTest::keyClick(&view, Qt::Key_Space);
    QTest::keyClick(&view, Qt::Key_Return);
    QTest::mouseClick(&view, Qt::LeftButton);
    EXPECT_EQ(actions_, 3);
}

TEST_F(ControlViewsTest, TextsArePlain) {
    TextField field;
    Box box;
    auto& label = show(makeTextFieldView(field));
    auto& frame = show(makeBoxView(box));
    field.setStringValue(markup);
    box.setTitle(markup);
    EXPECT_EQ(label.text().toStdString(), markup);
    EXPECT_EQ(label.textFormat(), Qt::PlainText);
    EXPECT_TRUE(label.textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
    EXPECT_EQ(accessibleName(frame), markup);
}

TEST_F(ControlViewsTest, ElidedFieldShowsAndCopiesAllOfItsTextWhenItHasTheKeyboard) {
    TextField control;
    Button button;
    auto& other = show(makeButtonView(button, QStringLiteral("Other")));
    auto& view = show(makeElidedFieldView(control, QStringLiteral("Name")));
    other.setFocus();
    const auto narrow = view.sizeHint().width();
    const auto text = QString::fromLatin1(markup) + QString(300, u'n');
    control.setStringValue(text.toStdString());
    EXPECT_EQ(view.sizeHint().width(), narrow);
    EXPECT_NE(view.text(), text);
    EXPECT_TRUE(view.text().startsWith(QStringLiteral("<im")) && view.text().endsWith(u'n'));
    EXPECT_TRUE(view.toolTip().contains(QStringLiteral("&lt;img src=x&gt; A &amp; B")));

    view.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), text);
    QTest::keyClick(&view, Qt::Key_X);
    EXPECT_EQ(view.text(), text);

    other.setFocus();
    control.setStringValue("short");
    EXPECT_EQ(view.text(), QStringLiteral("short"));
    EXPECT_TRUE(view.toolTip().isEmpty());
}

TEST_F(ControlViewsTest, ImageViewShowsItsImage) {
    ImageView control;
    auto& view = show(makeImageViewView(control, 48));
    const auto isDrawn = [&] {
        const auto shown = view.grab().toImage();
        QImage empty(shown.size(), shown.format());
        empty.fill(shown.pixelColor(0, 0));
        return shown != empty;
    };
    EXPECT_EQ(view.size(), QSize(48, 48));
    for (const auto* name : {"External", "GenericFileServerIcon"}) {
        EXPECT_FALSE(isDrawn());
        control.setImage(name);
        EXPECT_TRUE(isDrawn()) << name;
        control.setImage("no such image");
    }
    EXPECT_FALSE(isDrawn());
}

TEST_F(ControlViewsTest, ControlsOutliveTheirViews) {
    PopUpButton popUp;
    TextField field;
    delete makePopUpButtonView(popUp, QStringLiteral("Interval"));
    delete makeElidedFieldView(field, QStringLiteral("Name"));
    popUp.addItem("1 Hour", 60);
    field.setStringValue("text");
    EXPECT_EQ(popUp.items().size(), 1U);
    auto& again = show(makePopUpButtonView(popUp, QStringLiteral("Interval")));
    EXPECT_EQ(again.count(), 1);
}

} // namespace
} // namespace orvello
