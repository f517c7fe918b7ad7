#ifndef TORVIXML_DATAOPERATIONMODE_H
#define TORVIXML_DATAOPERATIONMODE_H

#include "torvixml_export.h"

#include "GuiComponentSettings.h"

#include <QVector>

namespace TORVIXML {

class DataOperationModeData;

/**
 * One named data operation mode with the list of GuiComponentSettings that
 * says which GUI components it offers and where they dock.
 *
 * A value class like GuiComponentSettings; copying a mode copies its
 * components. In validation mode AppendGuiComponentSettings refuses a
 * component without data (IncompleteDefinitionException) and SetName a null
 * name (OutOfRangeException). SetValidate and SetLogger hand the flag and the
 * logger down to every component in the list.
 */
class TORVIXML_EXPORT DataOperationMode : public REPORTGENERATOR::IRGObject
{
public:
    static constexpr qint64 id = -447125075;
    static qint64 GetId();

    DataOperationMode();
    DataOperationMode(const DataOperationMode& other);
    /// Moves the object whole, validation flag and logger included; the
    /// source is left without data, as a new object.
    DataOperationMode(DataOperationMode&& other) noexcept;
    DataOperationMode& operator=(const DataOperationMode& other);
    /// Like the copy assignment, flag and logger stay the target's.
    DataOperationMode& operator=(DataOperationMode&& other) noexcept;
    ~DataOperationMode() override;

    bool operator==(const DataOperationMode& other) const;
    bool operator!=(const DataOperationMode& other) const;

    bool IsInitialized() const;
    /// True when the mode has a (non-null) name; the list does not count.
    bool HasData() const override;
    bool AnyData() const;
    void Reset() override;
    void ResetToDefault();

    // GuiComponentSettings list
    bool IsGuiComponentSettingsSet() const;
    void ResetGuiComponentSettings();
    void SetDefaultGuiComponentSettings(const GuiComponentSettings& value);
    const GuiComponentSettings& GetDefaultGuiComponentSettings() const;
    /// Marks the list set and returns it for changing in place.
    QVector<GuiComponentSettings>& GetGuiComponentSettings();
    const QVector<GuiComponentSettings>& GetGuiComponentSettings() const;
    /// Replaces the list; its elements are not examined.
    void SetGuiComponentSettings(const QVector<GuiComponentSettings>& value);
    /// Appends a copy of the element.
    void AppendGuiComponentSettings(const GuiComponentSettings& value);
    bool IsValidGuiComponentSettings(const GuiComponentSettings& value) const;
    bool IsValidGuiComponentSettings(const QVector<GuiComponentSettings>& value) const;

    // Name
    bool IsNameSet() const;
    void ResetName();
    void SetDefaultName(const QString& value);
    const QString& GetDefaultName() const;
    bool IsValidName(const QString& value) const;
    QString GetName() const;
    void SetName(QString value);

    // Representations and validation.
    void Check(bool flag) const override;
    void Check() const override;
    void GetXml(QXmlStreamWriter& writer) const override;
    bool GetBinary(QDataStream& stream, int id, bool writeId) const override;
    void SetBinary(QDataStream& stream, int length) override;
    void ProcessXml(QXmlStreamReader& reader) override;
    void SetValidate(bool validate) const override;
    void SetLogger(std::shared_ptr<REPORTGENERATOR::Logger> logger) const override;
    /// Does nothing: a settings object keeps the type it was constructed with.
    void SetObjectType(REPORTGENERATOR::ObjectTypes type) override;
    /// A new, empty object of this class, and taking over what one holds
    /// (as the assignment does): the base's whole-document reads read into
    /// the first and hand the result over through the second.
    std::unique_ptr<REPORTGENERATOR::IRGObject> CreateEmpty() const override;
    void TakeContent(REPORTGENERATOR::IRGObject& source) override;

protected:
    void ProcessXmlStartElement(QXmlStreamReader& reader) override;

private:
    // The generic code that the operations above call into.
    friend struct Framework::Access<DataOperationMode>;

    void InitData() const;
    void ConstNoClearReset() const;

    mutable QSharedDataPointer<DataOperationModeData> d;
};

} // namespace TORVIXML

#endif
