#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace Simulator
{
// Carries out one command of the console, given as JSON text, and journals its answer ("machine", "answer"). Commands
// that call into the agent run on a thread of their own, so that the agent may hang in them; their answer is journalled
// when the agent has returned.
void ExecuteCommand(const std::string& text);

// The groups of commands. Each returns what its answer carries and throws std::exception with a sentence when it
// cannot be done.
nlohmann::json SetFacts(const nlohmann::json& command);
nlohmann::json PlanCalls(const nlohmann::json& command);
nlohmann::json CountCalls(const nlohmann::json& command);
nlohmann::json ListLiveObjects(const nlohmann::json& command);
nlohmann::json CountResources(const nlohmann::json& command);
nlohmann::json PostToMainWindow(const nlohmann::json& command);
nlohmann::json SendToMainWindow(const nlohmann::json& command);
nlohmann::json SendDeviceChange(const nlohmann::json& command);
nlohmann::json RaiseEvent(const nlohmann::json& command);
nlohmann::json ActOnToast(const nlohmann::json& command);
nlohmann::json TakePicture(const nlohmann::json& command);
nlohmann::json ListDialogs(const nlohmann::json& command);
nlohmann::json AnswerDialog(const nlohmann::json& command);
nlohmann::json PictureDialog(const nlohmann::json& command);
} // namespace Simulator
