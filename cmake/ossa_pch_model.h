#pragma once

#include <QColor>
#include <QDebug>
#include <QHash>
#include <QList>
#include <QMap>
#include <QMetaProperty>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <QXmlStreamReader>

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>
