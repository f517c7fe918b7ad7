#ifndef TORVIXML_GUICOMPONENTSETTINGS_H
#define TORVIXML_GUICOMPONENTSETTINGS_H

#include "torvixml_export.h"

#include "IRGObject.h"

#include <QCoreApplication>
#include <QSharedDataPointer>
#include <QString>
#include <QStringList>

namespace TORVIXML {

namespace Framework {
template <typename Class>
struct Access;
}

class GuiComponentSettingsData;

/**
 * Settings of one GUI component within a data operation mode: which
 * component is meant (Name), whether it is merely available or shown by
 * default (GuiComponentUsage) and in which dock area it sits
 * (DockWidgetLocation).
 *
 * A value class: assignment shares the data until either object is used
 * next, the copy constructor copies at once. Every member has a set flag,
 * a default and (for enumerations) an invalid value of its own. In
 * validation mode (SetValidate(true)) setters refuse invalid values with
 * OutOfRangeException.
 */
class TORVIXML_EXPORT GuiComponentSettings : public REPORTGENERATOR::IRGObject
{
public:
    /// Whether a component is merely available or shown by default.
    enum GuiComponentUsage : qint32 {
        AVAILABLE = 0,
        DEFAULT_DISPLAY = 1
    };
    /// Dock area of the main window; the name of FloatingDockWidgetArea is
    /// "FloatingDockWidgetArea " (with a trailing blank).
    enum DockWidgetLocation : qint32 {
        LeftDockWidgetArea = 0,
        RightDockWidgetArea = 1,
        TopDockWidgetArea = 2,
        BottomDockWidgetArea = 3,
        CenterDockWidgetArea = 4,
        FloatingDockWidgetArea = 5,
        NoDockWidgetArea = 6
    };

    static constexpr qint64 id = -1436546027;
    static qint64 GetId();

    GuiComponentSettings();
    GuiComponentSettings(const GuiComponentSettings& other);
    /// Moves the object whole, validation flag and logger included; the
    /// source is left without data, as a new object.
    GuiComponentSettings(GuiComponentSettings&& other) noexcept;
    GuiComponentSettings& operator=(const GuiComponentSettings& other);
    /// Like the copy assignment, flag and logger stay the target's.
    GuiComponentSettings& operator=(GuiComponentSettings&& other) noexcept;
    ~GuiComponentSettings() override;

    bool operator==(const GuiComponentSettings& other) const;
    bool operator!=(const GuiComponentSettings& other) const;

    bool IsInitialized() const;
    bool HasData() const override;
    bool AnyData() const;
    void Reset() override;
    void ResetToDefault();

    // GuiComponentUsage
    bool IsGuiComponentUsageSet() const;
    void ResetGuiComponentUsage();
    void SetInvalidGuiComponentUsage(const GuiComponentUsage& value);
    const GuiComponentUsage& GetInvalidGuiComponentUsage() const;
    void SetDefaultGuiComponentUsage(const GuiComponentUsage& value);
    bool IsValidGuiComponentUsage(const GuiComponentUsage& value) const;
    const GuiComponentUsage& GetDefaultGuiComponentUsage() const;
    const GuiComponentUsage& GetGuiComponentUsage() const;
    QString GetGuiComponentUsageAsString() const;
    void SetGuiComponentUsage(const GuiComponentUsage& value);

    // DockWidgetLocation
    bool IsDockWidgetLocationSet() const;
    void ResetDockWidgetLocation();
    void SetInvalidDockWidgetLocation(const DockWidgetLocation& value);
    const DockWidgetLocation& GetInvalidDockWidgetLocation() const;
    void SetDefaultDockWidgetLocation(const DockWidgetLocation& value);
    bool IsValidDockWidgetLocation(const DockWidgetLocation& value) const;
    const DockWidgetLocation& GetDefaultDockWidgetLocation() const;
    const DockWidgetLocation& GetDockWidgetLocation() const;
    QString GetDockWidgetLocationAsString() const;
    void SetDockWidgetLocation(const DockWidgetLocation& value);

    // Name
    bool IsNameSet() const;
    void ResetName();
    void SetDefaultName(const QString& value);
    const QString& GetDefaultName() const;
    bool IsValidName(const QString& value) const;
    QString GetName() const;
    void SetName(QString value);

    // Names of the enumeration values, as stored in XML and binary form.
    QString GuiComponentUsageToName(const GuiComponentUsage& value) const;
    GuiComponentUsage NameToGuiComponentUsage(const QString& name) const;
    static QStringList GetGuiComponentUsages();
    /// Translated display names (context "QObject"), index k for value k.
    static QStringList GetGUIGuiComponentUsages();
    QString DockWidgetLocationToName(const DockWidgetLocation& value) const;
    DockWidgetLocation NameToDockWidgetLocation(const QString& name) const;
    static QStringList GetDockWidgetLocations();
    /// Translated display names (context "QObject"), index k for value k.
    static QStringList GetGUIDockWidgetLocations();

    // Translation in the context "TORVIXML::GuiComponentSettings": tr() is
    // Qt's (the deprecated trUtf8() that Qt 5 declares with it is left out),
    // trUtf8() is the class's own, as Qt 6 has none.
#pragma push_macro("QT_DECLARE_DEPRECATED_TR_FUNCTIONS")
#undef QT_DECLARE_DEPRECATED_TR_FUNCTIONS
#define QT_DECLARE_DEPRECATED_TR_FUNCTIONS(context)
    Q_DECLARE_TR_FUNCTIONS(TORVIXML::GuiComponentSettings)
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
    friend struct Framework::Access<GuiComponentSettings>;

    void InitData() const;
    void ConstNoClearReset() const;

    mutable QSharedDataPointer<GuiComponentSettingsData> d;
};

} // namespace TORVIXML

#endif
