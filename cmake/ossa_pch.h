#pragma once

#include <QAction>
#include <QApplication>
#include <QColor>
#include <QDebug>
#include <QGraphicsItem>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QHash>
#include <QList>
#include <QMap>
#include <QMetaProperty>
#include <QObject>
#include <QPainter>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <QWidget>
#include <QXmlStreamReader>

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>
