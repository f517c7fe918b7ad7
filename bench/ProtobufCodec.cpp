#include "DocumentCodecs.h"

#include "settings_tree.pb.h"

namespace Bench {

std::string EncodeProtobuf(const PlainTree& tree)
{
    torvixml_bench::TorviGuiModeSettings message;
    message.set_operation_mode_handler(torvixml_bench::TorviGuiModeSettings::OperationModeHandler(tree.handler));
    message.mutable_data_operation_mode()->Reserve(tree.modes.size());
    for (const PlainMode& mode : tree.modes) {
        torvixml_bench::DataOperationMode* modeMessage = message.add_data_operation_mode();
        modeMessage->set_name(mode.name.toStdString());
        modeMessage->mutable_gui_component_settings()->Reserve(mode.components.size());
        for (const PlainComponent& component : mode.components) {
            torvixml_bench::GuiComponentSettings* componentMessage = modeMessage->add_gui_component_settings();
            componentMessage->set_name(component.name.toStdString());
            componentMessage->set_gui_component_usage(
                torvixml_bench::GuiComponentSettings::GuiComponentUsage(component.usage));
            componentMessage->set_dock_widget_location(
                torvixml_bench::GuiComponentSettings::DockWidgetLocation(component.dock));
        }
    }
    return message.SerializeAsString();
}

bool DecodeProtobuf(const std::string& bytes, PlainTree& tree)
{
    torvixml_bench::TorviGuiModeSettings message;
    if (!message.ParseFromString(bytes))
        return false;
    tree = PlainTree();
    tree.handler = message.operation_mode_handler();
    tree.modes.reserve(message.data_operation_mode_size());
    for (const torvixml_bench::DataOperationMode& modeMessage : message.data_operation_mode()) {
        PlainMode mode;
        mode.name = QString::fromStdString(modeMessage.name());
        mode.components.reserve(modeMessage.gui_component_settings_size());
        for (const torvixml_bench::GuiComponentSettings& componentMessage : modeMessage.gui_component_settings()) {
            mode.components.append(PlainComponent{QString::fromStdString(componentMessage.name()),
                                                  componentMessage.gui_component_usage(),
                                                  componentMessage.dock_widget_location()});
        }
        tree.modes.append(std::move(mode));
    }
    return true;
}

} // namespace Bench
