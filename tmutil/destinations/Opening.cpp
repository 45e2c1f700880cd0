#include "tmutil/destinations/Opening.h"

#include "tmutil/destinations/Places.h"

#include <fmt/format.h>

#include <cerrno>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace orvello::tmutil {

namespace {

/// What came of trying a key.
struct Attempt {
    std::string repositoryId; ///< empty when the key did not open it
    Refusal refusal = Refusal::Other;
    std::string failure;
};

class Opening {
  public:
    Opening(const std::string& restic, const std::string& address, const std::string& folder,
            const Keys& keys)
        : restic_(restic)
        , address_(address)
        , folder_(folder)
        , keys_(keys) {}

    Result<OpenedRepository> open(const AskPassword& ask) {
        if (!folder_.empty() && !isRepository(folder_))
            return make();
        auto files = keys_.all();
        if (files.empty() && folder_.empty()) {
            // A store has to be asked whether it holds a repository, for which any key does.
            const auto probe = keys_.make();
            if (!probe)
                return probe.problem();
            const auto attempt = tryKey(*probe);
            ::unlink(probe->c_str());
            if (attempt.refusal != Refusal::WrongKey)
                return attempt.refusal == Refusal::NoRepository ? make() : Problem{attempt.failure};
        }
        for (const auto& file : files) {
            const auto attempt = tryKey(file);
            if (!attempt.repositoryId.empty())
                return adopt(file, attempt.repositoryId);
            if (attempt.refusal == Refusal::NoRepository)
                return make();
            if (attempt.refusal != Refusal::WrongKey)
                return Problem{attempt.failure};
        }
        return openWithPassword(ask);
    }

  private:
    Restic engine(const std::string& keyFile) const { return {restic_, {address_, keyFile, {}}}; }

    Attempt tryKey(const std::string& file) const {
        const auto ended = engine(file).run({"cat", "config"});
        if (ended.status == 0)
            if (auto id = readRepositoryId(ended.output); !id.empty())
                return {std::move(id), {}, {}};
        return {{},
                readRefusal(ended.status, ended.errors),
                describeFailure("The destination cannot be opened", ended)};
    }

    Result<OpenedRepository> adopt(const std::string& file, const std::string& repositoryId) const {
        if (auto problem = keys_.assign(file, repositoryId))
            return *problem;
        return OpenedRepository{repositoryId, keys_.path(repositoryId), false};
    }

    Result<OpenedRepository> openWithPassword(const AskPassword& ask) const {
        const auto password = ask();
        if (!password)
            return Problem{
                "There are backups already, and none of your keys opens them. Say their password: with -p "
                "you are asked for it, else it is read from RESTIC_PASSWORD or RESTIC_PASSWORD_FILE."};
        const auto file = keys_.make(*password);
        if (!file)
            return file.problem();
        const auto attempt = tryKey(*file);
        if (!attempt.repositoryId.empty())
            return adopt(*file, attempt.repositoryId);
        ::unlink(file->c_str());
        return Problem{attempt.refusal == Refusal::WrongKey ? "The password does not open the backups there."
                                                            : attempt.failure};
    }

    Result<OpenedRepository> make() const {
        const bool madeFolder = !folder_.empty() && ::mkdir(folder_.c_str(), 0700) == 0;
        if (!folder_.empty() && !madeFolder && errno != EEXIST)
            return Problem{fmt::format("{}: {}.", folder_, std::generic_category().message(errno))};
        const auto file = keys_.make();
        if (!file)
            return file.problem();
        const auto ended = engine(*file).run({"init"});
        if (ended.status == 0) {
            auto attempt = tryKey(*file);
            if (attempt.repositoryId.empty())
                return Problem{attempt.failure}; // the key stays, as nothing else opens what was made
            auto opened = adopt(*file, attempt.repositoryId);
            if (opened)
                opened->isNew = true;
            return opened;
        }
        std::error_code error;
        if (madeFolder)
            std::filesystem::remove_all(folder_, error);
        ::unlink(file->c_str());
        if (readRefusal(ended.status, ended.errors) == Refusal::NoSpace)
            return Problem{"There is not enough space."};
        return Problem{describeFailure("The destination cannot be set up", ended)};
    }

    const std::string& restic_;
    const std::string& address_;
    const std::string& folder_;
    const Keys& keys_;
};

} // namespace

Result<OpenedRepository> openRepository(const std::string& restic, const std::string& address,
                                        const std::string& folder, const Keys& keys, const AskPassword& ask) {
    return Opening(restic, address, folder, keys).open(ask);
}

} // namespace orvello::tmutil
