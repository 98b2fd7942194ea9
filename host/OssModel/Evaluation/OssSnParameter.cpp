#include "OssModel/Evaluation/OssSnParameter.h"

#include "OssCore/Values/OssColor.h"
#include "OssCore/Values/OssUserEnum.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageList.h"
#include "OssModel/Images/OssImageManager.h"

#include <QPointF>

#include <algorithm>

namespace {

OssEvParameter ofColor(const QVariant &value)
{
    const auto color = value.value<OssColor>();
    return OssEvColor{float(color.red()), float(color.green()), float(color.blue()),
                      float(color.alpha())};
}

OssEvParameter ofChoice(const QVariant &value)
{
    return value.value<OssUserEnum>().currentName().toStdString();
}

OssEvParameter ofReal(const QVariant &value)
{
    return value.toDouble();
}

OssEvParameter ofInteger(const QVariant &value)
{
    return std::int64_t(value.toInt());
}

OssEvParameter ofFlag(const QVariant &value)
{
    return value.toBool();
}

OssEvParameter ofText(const QVariant &value)
{
    return value.toString().toStdString();
}

OssEvParameter ofPoint(const QVariant &value)
{
    return OssEvVector2{value.toPointF().x(), value.toPointF().y()};
}

OssEvParameter ofImages(const QVariant &value)
{
    const auto ids = OssImageList::fromVariant(value).ids();
    const OssImage *image = ids.isEmpty() ? nullptr
                                          : OssImageManager::instance()->getImage(ids.first());
    return image ? image->path().toStdString() : std::string();
}

} // namespace

bool OssSnParameter::fromValue(const QVariant &value, OssEvParameter *parameter)
{
    struct Row
    {
        int type; ///< of OssAttributeKind
        OssEvParameter (*make)(const QVariant &value);
    };

    static const Row table[] = {
        {QMetaType::Double, ofReal},   {QMetaType::Int, ofInteger},
        {QMetaType::Bool, ofFlag},     {qMetaTypeId<OssUserEnum>(), ofChoice},
        {QMetaType::QString, ofText},  {qMetaTypeId<OssColor>(), ofColor},
        {QMetaType::QPointF, ofPoint}, {QMetaType::QStringList, ofImages}};
    const auto *row = std::find_if(std::begin(table), std::end(table), [&value](const Row &one) {
        return one.type == value.userType();
    });
    if (row == std::end(table))
        return false;
    *parameter = row->make(value);
    return true;
}
