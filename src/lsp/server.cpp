#include "lsp/server.h"

#include "lsp/base/uri.h"
#include "lsp/diagnostics.h"
#include "lsp/method_table.h"
#include "support/paths.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace morquill::lsp {

namespace {

bool holdsText(const Json& list, std::string_view text) {
    return list.is_array() && std::find(list.begin(), list.end(), text) != list.end();
}

ClientFeatures readFeatures(const Json& capabilities) {
    const Json& document = member(capabilities, "textDocument");
    const Json& workspace = member(capabilities, "workspace");
    ClientFeatures client;
    if (holdsText(member(member(capabilities, "general"), "positionEncodings"), "utf-8")) {
        client.unit = PositionUnit::utf8;
    }
    client.pullsDiagnostics = member(document, "diagnostic").is_object();
    client.nestedSymbols =
        flagMember(member(document, "documentSymbol"), "hierarchicalDocumentSymbolSupport");
    client.snippets = flagMember(member(member(document, "completion"), "completionItem"), "snippetSupport");
    client.refreshesDiagnostics = flagMember(member(workspace, "diagnostics"), "refreshSupport");
    client.watchesFiles = flagMember(member(workspace, "didChangeWatchedFiles"), "dynamicRegistration");
    return client;
}

std::vector<std::string> readFolders(const Json& params) {
    std::vector<std::string> folders;
    const auto add = [&folders](const std::string& uri) {
        if (const auto path = pathOfUri(uri)) {
            folders.push_back(absoluteLocation(*path));
        }
    };
    if (const Json& list = member(params, "workspaceFolders"); list.is_array()) {
        for (const Json& folder : list) {
            add(textMember(folder, "uri"));
        }
    } else {
        add(textMember(params, "rootUri"));
    }
    return folders;
}

} // namespace

Server::Server(SendMessage send) : session_(std::move(send)) {}

std::optional<Server::Message> Server::readMessage(const Frame& frame) {
    Message message;
    if (const auto* fault = std::get_if<FrameFault>(&frame)) {
        message.fault.emplace(ErrorCode::parseError, std::string(fault->reason));
        return message;
    }
    auto value = parseJson(std::get<FrameBody>(frame).text);
    if (!value) {
        message.fault.emplace(ErrorCode::parseError, "a message is no JSON");
        return message;
    }
    const Json& id = member(*value, "id");
    message.isRequest = id.is_string() || id.is_number_integer();
    message.id = message.isRequest ? id : Json();
    message.method = textMember(*value, "method");
    if (message.method.empty()) {
        if (message.isRequest && (value->contains("result") || value->contains("error"))) {
            return std::nullopt; // the client's answer to a request of the server
        }
        message.fault.emplace(ErrorCode::invalidRequest, "a message has no method");
        return message;
    }
    if (value->contains("params")) {
        message.params = std::move((*value)["params"]);
    }
    return message;
}

void Server::receive(const Frame& frame) {
    if (auto message = readMessage(frame)) {
        queue_.push_back(std::move(*message));
    }
}

bool Server::step(TimePoint now) {
    if (queue_.empty() || exitStatus_) {
        return false;
    }
    const Message message = std::move(queue_.front());
    queue_.pop_front();
    session_.now = now;
    handle(message);
    return true;
}

void Server::handle(const Message& message) {
    if (message.fault) {
        session_.send(errorText(message.id, message.fault->code(), message.fault->what()));
    } else if (message.isRequest) {
        answer(message);
    } else {
        takeNotification(message);
    }
}

void Server::answer(const Message& message) {
    const auto refuse = [&](ErrorCode code, std::string_view text) {
        session_.send(errorText(message.id, code, text));
    };
    try {
        session_.send(responseText(message.id, result(message)));
    } catch (const ResponseError& error) {
        refuse(error.code(), error.what());
    } catch (const std::exception& error) {
        refuse(ErrorCode::internalError, error.what());
    }
}

Json Server::result(const Message& message) {
    if (life_ == Life::stopped) {
        throw ResponseError(ErrorCode::invalidRequest, "the server has been shut down");
    }
    if (message.method == "initialize") {
        return initialize(message.params);
    }
    if (life_ == Life::waiting) {
        throw ResponseError(ErrorCode::serverNotInitialized, "initialize comes first");
    }
    if (message.method == "shutdown") {
        life_ = Life::stopped;
        return nullptr;
    }
    const RequestRow* row = findRequest(message.method);
    if (row == nullptr) {
        throw ResponseError(ErrorCode::methodNotFound, "unknown method: " + message.method);
    }
    if (isCancelled(message)) {
        throw ResponseError(ErrorCode::requestCancelled, "cancelled");
    }
    if (row->lifetime == Lifetime::ofText && isOutdated(message)) {
        throw ResponseError(ErrorCode::contentModified, "the text has changed");
    }
    return row->answer(session_, message.params);
}

Json Server::initialize(const Json& params) {
    if (life_ != Life::waiting) {
        throw ResponseError(ErrorCode::invalidRequest, "initialize has come before");
    }
    session_.client = readFeatures(member(params, "capabilities"));
    session_.folders = readFolders(params);
    life_ = Life::running;
    return {{"capabilities", serverCapabilities(session_.client)},
            {"serverInfo", {{"name", "mqkit-lsp"}, {"version", MQKIT_VERSION}}}};
}

void Server::takeNotification(const Message& message) {
    if (message.method == "exit") {
        exitStatus_ = statusAtEnd();
        return;
    }
    const NotificationRow* row = findNotification(message.method);
    if (life_ != Life::running || row == nullptr) {
        return;
    }
    try {
        row->take(session_, message.params);
    } catch (const std::exception& error) {
        session_.notify("window/logMessage", {{"type", 1}, {"message", error.what()}});
    }
}

/// True when the client takes the request back further on in the queue.
bool Server::isCancelled(const Message& message) const {
    return std::any_of(queue_.begin(), queue_.end(), [&](const Message& later) {
        return later.method == "$/cancelRequest" && member(later.params, "id") == message.id;
    });
}

/// True when a newer version of the text that the request is about waits in the queue.
bool Server::isOutdated(const Message& message) const {
    const auto uri = textMember(member(message.params, "textDocument"), "uri");
    return !uri.empty() && std::any_of(queue_.begin(), queue_.end(), [&](const Message& later) {
        return later.method == "textDocument/didChange" &&
               textMember(member(later.params, "textDocument"), "uri") == uri;
    });
}

void Server::idle(TimePoint now) {
    session_.now = now;
    if (life_ == Life::running) {
        publishDue(session_);
        // In pieces: a message that comes meanwhile waits no longer than one of them takes.
        constexpr int pieces = 8;
        for (int i = 0; i < pieces && session_.workspace.step(); ++i) {
        }
    }
}

std::optional<std::chrono::milliseconds> Server::pause(TimePoint now) const {
    using std::chrono::milliseconds;
    if (!queue_.empty()) {
        return milliseconds(0);
    }
    if (life_ != Life::running) {
        return std::nullopt; // nothing is done before or after
    }
    if (!session_.workspace.isDone()) {
        return milliseconds(0);
    }
    std::optional<milliseconds> least;
    for (const auto& [uri, due] : session_.dueDiagnostics) {
        const auto left = std::max(milliseconds(0), std::chrono::ceil<milliseconds>(due - now));
        least = least ? std::min(*least, left) : left;
    }
    return least;
}

} // namespace morquill::lsp
