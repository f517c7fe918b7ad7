#ifndef TORVIXML_TORVIGUIMODESETTINGS_H
#define TORVIXML_TORVIGUIMODESETTINGS_H

#include "torvixml_export.h"

#include "DataOperationMode.h"

namespace TORVIXML {

class TorviGuiModeSettingsData;

/**
 * The GUI-mode settings of the application: the operation-mode handler it
 * runs with and the list of its data operation modes. The root of the
 * settings tree: the object that callers create, fill, check and store.
 *
 * Store and load it through the base class's whole-document operations, for
 * example GetXmlString()/SetXmlString(), SaveXml()/LoadXml(),
 * GetBinaryRepresentationAsQByteArray()/SetBinaryRepresentation().
 */
class TORVIXML_EXPORT TorviGuiModeSettings : public REPORTGENERATOR::IRGObject
{
public:
    enum OperationModeHandler : qint32 {
        TX470ManagementComponent = 0,
        PMR830ManagementComponent = 1,
        QLSManagementComponent = 2,
        VbkManagementComponent = 3
    };

    static constexpr qint64 id = 232099450;
    static qint64 GetId();

    TorviGuiModeSettings();
    TorviGuiModeSettings(const TorviGuiModeSettings& other);
    /// Moves the object whole, validation flag and logger included; the
    /// source is left without data, as a new object.
    TorviGuiModeSettings(TorviGuiModeSettings&& other) noexcept;
    TorviGuiModeSettings& operator=(const TorviGuiModeSettings& other);
    /// Like the copy assignment, flag and logger stay the target's.
    TorviGuiModeSettings& operator=(TorviGuiModeSettings&& other) noexcept;
    ~TorviGuiModeSettings() override;

    bool operator==(const TorviGuiModeSettings& other) const;
    bool operator!=(const TorviGuiModeSettings& other) const;

    bool IsInitialized() const;
    /// True when the handler is set; the list does not count.
    bool HasData() const override;
    bool AnyData() const;
    void Reset() override;
    void ResetToDefault();

    // DataOperationMode list
    bool IsDataOperationModeSet() const;
    void ResetDataOperationMode();
    void SetDefaultDataOperationMode(const DataOperationMode& value);
    const DataOperationMode& GetDefaultDataOperationMode() const;
    /// Marks the list set and returns it for changing in place.
    QVector<DataOperationMode>& GetDataOperationMode();
    const QVector<DataOperationMode>& GetDataOperationMode() const;
    /// Replaces the list; its elements are not examined.
    void SetDataOperationMode(const QVector<DataOperationMode>& value);
    /// Appends a copy of the mode (and of its components).
    void AppendDataOperationMode(const DataOperationMode& value);
    bool IsValidDataOperationMode(const DataOperationMode& value) const;
    bool IsValidDataOperationMode(const QVector<DataOperationMode>& value) const;

    // OperationModeHandler
    bool IsOperationModeHandlerSet() const;
    void ResetOperationModeHandler();
    void SetInvalidOperationModeHandler(const OperationModeHandler& value);
    const OperationModeHandler& GetInvalidOperationModeHandler() const;
    void SetDefaultOperationModeHandler(const OperationModeHandler& value);
    const OperationModeHandler& GetDefaultOperationModeHandler() const;
    bool IsValidOperationModeHandler(const OperationModeHandler& value) const;
    const OperationModeHandler& GetOperationModeHandler() const;
    void SetOperationModeHandler(const OperationModeHandler& value);
    QString GetOperationModeHandlerAsString() const;
    QString OperationModeHandlerToName(const OperationModeHandler& value) const;
    OperationModeHandler NameToOperationModeHandler(const QString& name) const;
    static QStringList GetOperationModeHandlers();
    /// Translated display names (context "QObject"), index k for value k.
    static QStringList GetGUIOperationModeHandlers();

    // Translation in the context "TORVIXML::TorviGuiModeSettings": tr() is
    // Qt's (the deprecated trUtf8() that Qt 5 declares with it is left out),
    // trUtf8() is the class's own, as Qt 6 has none.
#pragma push_macro("QT_DECLARE_DEPRECATED_TR_FUNCTIONS")
#undef QT_DECLARE_DEPRECATED_TR_FUNCTIONS
#define QT_DECLARE_DEPRECATED_TR_FUNCTIONS(context)
    Q_DECLARE_TR_FUNCTIONS(TORVIXML::TorviGuiModeSettings)
#pragma pop_macro("QT_DECLARE_DEPRECATED_TR_FUNCTIONS")
public:
    static QString trUtf8(const char* sourceText, const char* disambiguation = nullptr, int n = -1);

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
    friend struct Framework::Access<TorviGuiModeSettings>;

    void InitData() const;
    void ConstNoClearReset() const;

    mutable QSharedDataPointer<TorviGuiModeSettingsData> d;
};

} // namespace TORVIXML

#endif
