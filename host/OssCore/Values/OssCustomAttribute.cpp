#include "OssCore/Values/OssCustomAttribute.h"

#include "OssCore/Values/OssGroupParameterObject.h"

OssCustomAttribute::OssCustomAttribute() = default;

OssCustomAttribute::OssCustomAttribute(const QString &name, const QVariant &value)
    : m_definition(new Definition)
    , m_value(value)
{
    m_definition->name = name;
    m_definition->defaultValue = value;
}

OssCustomAttribute::OssCustomAttribute(QSharedDataPointer<Definition> definition,
                                       const QVariant &value)
    : m_definition(std::move(definition))
    , m_value(value)
{
}

OssCustomAttribute::OssCustomAttribute(const OssCustomAttribute &) = default;
OssCustomAttribute::OssCustomAttribute(OssCustomAttribute &&) noexcept = default;
OssCustomAttribute &OssCustomAttribute::operator=(const OssCustomAttribute &) = default;
OssCustomAttribute &OssCustomAttribute::operator=(OssCustomAttribute &&) noexcept = default;
OssCustomAttribute::~OssCustomAttribute() = default;

bool OssCustomAttribute::isValid() const
{
    return m_definition && !m_definition->name.isEmpty();
}

const OssCustomAttribute::Definition &OssCustomAttribute::definition() const
{
    static const Definition none;
    return m_definition ? *m_definition.constData() : none;
}

OssCustomAttribute::Definition &OssCustomAttribute::editDefinition()
{
    if (!m_definition)
        m_definition = new Definition;
    return *m_definition;
}

QString OssCustomAttribute::name() const
{
    return definition().name;
}

QString OssCustomAttribute::prettyName() const
{
    const Definition &shared = definition();
    return shared.prettyName.isEmpty() ? OssGroupParameterObject().prettyPropertyName(shared.name)
                                       : shared.prettyName;
}

QString OssCustomAttribute::group() const
{
    return definition().group;
}

bool OssCustomAttribute::isVisible() const
{
    return definition().visible;
}

void OssCustomAttribute::setPrettyName(const QString &prettyName)
{
    editDefinition().prettyName = prettyName;
}

bool OssCustomAttribute::isDefault() const
{
    return m_value == definition().defaultValue;
}

bool operator==(const OssCustomAttribute &a, const OssCustomAttribute &b)
{
    return a.name() == b.name() && a.prettyName() == b.prettyName() && a.group() == b.group()
           && a.isVisible() == b.isVisible() && a.m_value == b.m_value;
}
