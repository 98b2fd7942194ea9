#include "support/Text.h"
#include "ViewFixture.h"

#include <QBackingStore>
#include <QRandomGenerator>

#include <cstdlib>

// What was painted bit by bit is what is painted at once.

namespace {

constexpr int LeastOfATear = 40; ///< pixels

class Repaint : public OssNgViewTest
{
protected:
    Repaint()
    {
        view.resize(700, 500);
        auto *backdrop = addBackdrop({-150, -120, 500, 320});
        backdrop->setTitleText(text("Somewhere"));
        b->attachInput(In, a, Out);
        c->attachInput(In, a, Out);
        c->setErrorText(text("\"C\" cannot be computed"));
        for (int i = 0; i < 12; ++i) {
            const int row = i / 5;
            scene.add(text("Node with a name"), {-400.0 + 190 * (i % 5), 330.0 + 97 * row});
        }
        QCoreApplication::processEvents();
    }

    /// What stands in the window, as it was put together so far.
    QImage onScreen()
    {
        QCoreApplication::processEvents();
        const auto *image = static_cast<const QImage *>(view.backingStore()->paintDevice());
        return image->copy();
    }

    void expectWhole(const char *after)
    {
        const QImage parts = onScreen();
        view.viewport()->repaint();
        const QImage whole = onScreen();
        int different = 0;
        QRect where;
        for (int y = 0; y < whole.height(); ++y) {
            for (int x = 0; x < whole.width(); ++x) {
                if (isNear(parts.pixel(x, y), whole.pixel(x, y)))
                    continue;
                ++different;
                where |= QRect(x, y, 1, 1);
            }
        }
        // Qt moves a hairline by a pixel where it clips it, a letter by a quarter of one where it rounds.
        const double ratio = view.devicePixelRatioF();
        EXPECT_LT(different, LeastOfATear * ratio * ratio)
            << "after " << after << ", from " << where.x() << ", " << where.y() << " to "
            << where.right() << ", " << where.bottom();
    }

    /// Blended in one step or two: the last digit of a byte may differ.
    static bool isNear(QRgb a, QRgb b)
    {
        constexpr int Rounding = 3;
        return std::abs(qRed(a) - qRed(b)) <= Rounding
               && std::abs(qGreen(a) - qGreen(b)) <= Rounding
               && std::abs(qBlue(a) - qBlue(b)) <= Rounding;
    }

    /// Near the border the view pans, by itself and on, also between two pictures of it.
    QPointF clearOfBorder(const QPointF &scenePos) const
    {
        constexpr double Kept = 40.0;
        const QPointF there = view.fromScene(scenePos);
        return view.toScene({qBound(Kept, there.x(), view.viewport()->width() - Kept),
                             qBound(Kept, there.y(), view.viewport()->height() - Kept)});
    }

    void changeThings(QRandomGenerator *random)
    {
        const auto way = [random] {
            return QPointF(random->bounded(60.0) - 30.0, random->bounded(60.0) - 30.0);
        };
        view.scrollBy(way());
        expectWhole("scrolling");
        a->setPosition(a->pos() + way() / 7.0);
        expectWhole("moving a node");
        b->setSelected(!b->isSelected());
        expectWhole("selecting");
        QTest::mouseMove(view.viewport(), at(body(c)));
        expectWhole("hovering a node");
        QTest::mouseMove(view.viewport(), at(b->input(In)->markerPosition()));
        b->input(In)->switchToDotableMode(!b->input(In)->isDotable());
        expectWhole("hovering and marking a wire");
        press(a->outputPortScenePos(Out));
        move(clearOfBorder(a->outputPortScenePos(Out) + way() * 3.0));
        move(clearOfBorder(a->outputPortScenePos(Out) + way() * 3.0));
        expectWhole("pulling a wire");
        key(Qt::Key_Escape);
        release(body(a));
        expectWhole("letting it go");
        const QPointF corner = view.toScene({60, 440}); // far from the border, where the view pans
        press(corner);
        move(view.toScene({170, 380}));
        move(view.toScene({150, 330}) + way() / 4.0);
        expectWhole("drawing a band");
        release(corner);
        expectWhole("ending it");
        c->setText(c->text() + QLatin1Char('x'));
        expectWhole("renaming");
    }

    OssNgExtendedNode *c = scene.add("C", {280, 130});
};

TEST_F(Repaint, partsMakeTheWholeAtEveryZoomAndScroll)
{
    QRandomGenerator random(4711);
    double zoom = 0.06;
    for (int level = 0; level < 20; ++level, zoom *= 1.23) {
        SCOPED_TRACE(zoom);
        view.zoomAbout(zoom, QPointF(random.bounded(700.0), random.bounded(500.0)));
        view.centerViewOn(QPointF(100.0 + random.bounded(1.0), 100.0 + random.bounded(1.0)), false);
        expectWhole("zooming");
        changeThings(&random);
    }
}

TEST_F(Repaint, anOverviewShowsChangesOfWhatWasNeverSeenNearer)
{
    view.zoomAbout(0.2, {350, 250});
    expectWhole("zooming");
    for (const bool wholeIsDue : {false, true}) {
        // Of what is added while everything is to be painted anyhow, Qt never learns where it is seen.
        if (wholeIsDue)
            scene.update();
        auto *late = scene.add(text("Late"), {-500.0, -500.0});
        late->setPosition({-600.0, -700.0});
        expectWhole("adding a node");
        late->setSelected(true);
        expectWhole("selecting");
        late->setSelected(false);
        expectWhole("selecting nothing");
        late->setVisible(false);
        expectWhole("hiding");
        late->setVisible(true);
        expectWhole("showing");
        scene.removeItem(late);
        expectWhole("removing");
        scene.addItem(late);
        late->setPosition({900.0, -900.0});
        expectWhole("adding it elsewhere");
    }
}

} // namespace
