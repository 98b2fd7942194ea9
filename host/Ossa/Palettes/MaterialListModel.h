#pragma once

#include "OssInterface/Dialogs/OssNodeTypeListModel.h"

class MaterialPictures;

/// The node types that make a material, with their pictures: those installed and the user's own, in the
/// folders below "Materials". Names, other names, tags and folders are searched.
class MaterialListModel : public OssNodeTypeListModel
{
    Q_OBJECT

public:
    /// The pictures must outlive the model. Of one folder, of all for an empty name.
    MaterialListModel(MaterialPictures *pictures, const QString &folder, QObject *parent = nullptr);

    /// "Metal", "Stone": below "Materials", in the order of the alphabet.
    static QStringList folders();

    QVariant data(const QModelIndex &index, int role) const override;

private:
    void showPicture(const QString &pathKey);

    MaterialPictures *m_pictures;
};
