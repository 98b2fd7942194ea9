#include "Ossa/ViewerPanel.h"

#include "Ossa/UvView.h"
#include "Ossa/ViewerSource.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

ViewerPanel::ViewerPanel(QWidget *parent)
    : QWidget(parent)
    , m_source(new ViewerSource(this))
    , m_view(new UvView(this))
    , m_name(new QLabel(this))
    , m_values(new QLabel(this))
    , m_progress(new QProgressBar(this))
    , m_channels(new QComboBox(this))
    , m_resolution(new QComboBox(this))
    , m_display(new QComboBox(this))
    , m_exposure(new QDoubleSpinBox(this))
    , m_gamma(new QDoubleSpinBox(this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->setSpacing(6);
    layout->addWidget(makeControls());
    layout->addWidget(m_view, 1);
    auto *foot = new QHBoxLayout;
    m_progress->setMaximumWidth(120);
    m_progress->setMaximumHeight(8);
    m_progress->setTextVisible(false);
    m_progress->hide();
    foot->addWidget(m_name);
    foot->addWidget(m_values, 1);
    foot->addWidget(m_progress);
    layout->addLayout(foot);
    m_values->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_values->setMinimumWidth(40);

    connect(m_source, &ViewerSource::began, this,
            [this](const QList<int> &patches, const QString &node, const QString &problem) {
                m_name->setText(node);
                m_view->begin(patches, m_source->resolution(), problem);
                m_progress->setVisible(!patches.isEmpty());
            });
    connect(m_source, &ViewerSource::tileArrived, m_view, &UvView::setTile);
    connect(m_source, &ViewerSource::progressed, this, [this](int done, int total) {
        m_progress->setMaximum(total);
        m_progress->setValue(done);
        m_progress->setVisible(done < total);
    });
    connect(m_view, &UvView::focusMoved, m_source, &ViewerSource::setFocus);
    connect(m_view, &UvView::pointed, m_values, &QLabel::setText);
}

QWidget *ViewerPanel::makeControls()
{
    auto *bar = new QWidget(this);
    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    m_channels->addItems({tr("Color"), tr("Red"), tr("Green"), tr("Blue"), tr("Alpha")});
    m_channels->setAccessibleName(tr("Channels"));
    m_display->addItems({tr("sRGB"), tr("Raw")});
    m_display->setAccessibleName(tr("Display"));
    for (const int size : {256, 512, 1024, 2048, 4096})
        m_resolution->addItem(QString::number(size), size);
    m_resolution->setCurrentIndex(2);
    m_resolution->setAccessibleName(tr("Resolution of a patch"));
    m_exposure->setRange(-16.0, 16.0);
    m_exposure->setSingleStep(0.25);
    m_exposure->setPrefix(tr("Exposure "));
    m_exposure->setAccessibleName(tr("Exposure in stops"));
    m_gamma->setRange(0.1, 5.0);
    m_gamma->setValue(1.0);
    m_gamma->setSingleStep(0.05);
    m_gamma->setPrefix(tr("Gamma "));
    m_gamma->setAccessibleName(tr("Gamma"));
    for (QWidget *control :
         std::initializer_list<QWidget *>{m_channels, m_display, m_exposure, m_gamma})
        layout->addWidget(control);
    layout->addStretch(1);
    layout->addWidget(m_resolution);
    const auto changed = qOverload<int>(&QComboBox::currentIndexChanged);
    connect(m_channels, changed, this, &ViewerPanel::applyLook);
    connect(m_display, changed, this, &ViewerPanel::applyLook);
    connect(m_resolution, changed, this,
            [this] { m_source->setResolution(m_resolution->currentData().toInt()); });
    const auto edited = qOverload<double>(&QDoubleSpinBox::valueChanged);
    connect(m_exposure, edited, this, &ViewerPanel::applyLook);
    connect(m_gamma, edited, this, &ViewerPanel::applyLook);
    return bar;
}

void ViewerPanel::applyLook()
{
    ViewerLook look;
    look.channels = ViewerLook::Channels(m_channels->currentIndex());
    look.exposure = m_exposure->value();
    look.gamma = m_gamma->value();
    look.raw = m_display->currentIndex() == 1;
    m_source->setLook(look);
}

void ViewerPanel::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_source->setActive(true);
}

void ViewerPanel::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    m_source->setActive(false);
}
