// Dialogs that belong to a window of the host.
#include "tests/frameworks/kelpui/qt/OpenDialog.h"

#include <QScreen>
#include <QTest>
#include <QVBoxLayout>
#include <QWindow>

#include <cstdint>
#include <memory>

namespace
{

using namespace testing_support;

DialogWishes Child(void* inParent)
{
    DialogWishes wishes;
    wishes.mParent = inParent;
    return wishes;
}

QWindow* ShownParent(void* inParent)
{
    OpenDialog dialog(Child(inParent));
    QWindow* parent = nullptr;
    dialog.Run([&] { parent = dialog.Window().windowHandle()->transientParent(); });
    return parent;
}

class ParentWindows : public testing::Test
{
protected:
    ParentWindows()
    {
        mHost.setGeometry(300, 250, 400, 300);
        mHost.show();
    }

    QWidget mHost;
};

TEST_F(ParentWindows, MayBeAWidget)
{
    EXPECT_EQ(ShownParent(&mHost), mHost.windowHandle());
}

TEST_F(ParentWindows, MayBeAWidgetWithinAWindow)
{
    QWidget inside(&mHost);
    EXPECT_EQ(ShownParent(&inside), mHost.windowHandle());
}

TEST_F(ParentWindows, MayBeAWindowOfQtWithoutWidgets)
{
    QWindow window;
    window.show();
    EXPECT_EQ(ShownParent(&window), &window);
}

TEST_F(ParentWindows, AreNoneForWhatIsNoWindow)
{
    int number = 0;
    EXPECT_EQ(ShownParent(&number), nullptr);
    EXPECT_EQ(ShownParent(nullptr), nullptr);
    EXPECT_EQ(ShownParent(reinterpret_cast<void*>(std::uintptr_t{0x1234567})), nullptr);
}

TEST_F(ParentWindows, HaveTheDialogInTheirMiddle)
{
    OpenDialog dialog(Child(&mHost));
    dialog.Run(
        [&]
        {
        const QPoint away = dialog.Window().geometry().center() - mHost.geometry().center();
        EXPECT_LE(away.manhattanLength(), 2) << away.x() << " " << away.y();
    });
}

TEST_F(ParentWindows, AtTheEdgeKeepTheDialogOnTheScreen)
{
    for (const QPoint corner : {QPoint(-390, -290), QPoint(3000, 3000)})
    {
        mHost.move(corner);
        OpenDialog dialog(Child(&mHost));
        dialog.Run(
            [&]
            {
            EXPECT_TRUE(
                dialog.Window().screen()->availableGeometry().contains(dialog.Window().geometry()))
                << dialog.Window().x() << " " << dialog.Window().y();
        });
    }
}

TEST_F(ParentWindows, GiveWayToTheOwnersWishForAPlace)
{
    DialogWishes wishes = Child(&mHost);
    wishes.mPosition = {20, 30};
    OpenDialog dialog(wishes);
    dialog.Run([&] { EXPECT_EQ(dialog.Window().pos(), QPoint(20, 30)); });
}

TEST_F(ParentWindows, TakeNoInputMeanwhile)
{
    OpenDialog dialog(Child(&mHost));
    dialog.Run([&] { EXPECT_EQ(dialog.Window().windowModality(), Qt::ApplicationModal); });
}

TEST(ParentWindowsThatClose, LeaveTheDialogOpen)
{
    auto host = std::make_unique<QWidget>();
    host->show();
    OpenDialog dialog(Child(host.get()));
    EXPECT_EQ(dialog.Run(
                  [&]
                  {
        host.reset();
        QTest::qWait(20);
        EXPECT_TRUE(dialog.Window().isVisible());
        EXPECT_EQ(dialog.Window().windowHandle()->transientParent(), nullptr);
        dialog.Press(Qt::Key_Return);
    }),
              UI_ArchivedDialog::kOK);
}

}  // namespace
