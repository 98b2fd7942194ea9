#include "OssCore/Values/OssUserEnum.h"

OssUserEnum::OssUserEnum(QStringList names, int currentValue)
    : m_names(std::move(names))
    , m_currentValue(currentValue)
{
}

QString OssUserEnum::currentName() const
{
    return m_names.value(m_currentValue);
}

void OssUserEnum::registerMetaType()
{
    static const bool once = [] {
        qRegisterMetaType<OssUserEnum>("OssUserEnum");
        QMetaType::registerComparators<OssUserEnum>();
        QMetaType::registerConverter<OssUserEnum, int>(&OssUserEnum::currentValue);
        QMetaType::registerConverter<OssUserEnum, QString>(&OssUserEnum::currentName);
        return true;
    }();
    Q_UNUSED(once)
}
