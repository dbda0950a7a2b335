// Any bytes as a command file: every note names the file and a line, and nothing is asked of the program with
// values outside what its interface promises.

#include <cstdlib>

#include "app/commandfile.h"

namespace {

void require(bool truth)
{
    if (!truth) std::abort();
}

bool finite(float value)
{
    return value > -1e11f && value < 1e11f;
}

class RNullTarget : public app::RCommandTarget {
public:
    bool isAllowed(int id) override { return id != 0; }
    std::string refusal(int id) override
    {
        require(id != 0);
        return {};
    }
    bool isAborted() override { return false; }
    bool openCollection(const std::string& path) override { return clean(path); }
    bool loadConfiguration(const std::string& path) override { return clean(path); }
    bool exportGraphics(int, const std::string& path, int) override { return clean(path); }
    bool exportData(const std::string& path) override { return clean(path); }
    void quit() override {}
    std::string createCollection(const std::string& path, const std::string& set) override
    {
        require(!path.empty() && !set.empty() && clean(path));
        return line(set);
    }
    std::string copyCollection(const std::string& path) override { return given(path); }
    std::string moveCollection(const std::string& path) override { return given(path); }
    std::string deleteCollection() override { return {}; }
    std::string sortAndCondense() override { return {}; }
    std::string changeVariables(const std::string& file) override { return given(file); }
    std::string deleteSelected() override { return {}; }
    std::string deleteEmpty() override { return {}; }
    std::string deleteStation(int number) override
    {
        require(number >= 1);
        return {};
    }
    std::string addLogComment(std::string_view text) override
    {
        require(!text.empty());
        return line(text);
    }
    std::string closeCollection() override { return {}; }
    std::string checkCollection(const std::string& path) override
    {
        require(clean(path));
        return {};
    }
    std::string setMode(int mode) override
    {
        require(mode >= -1 && mode <= 3);
        return {};
    }
    std::string useLayout(std::string_view text) override { return line(text); }
    std::string setWindow(const app::WINDOWVARIABLES& v) override { return line(v.x + v.y); }
    std::string setRange(const app::WINDOWRANGES& r) override
    {
        require(finite(r.x.first) && r.x.first < r.x.second && finite(r.y.second));
        require(!r.z || r.z->first < r.z->second);
        return {};
    }
    std::string fullRange(std::optional<int>) override { return {}; }
    std::string setStyle(const app::WINDOWSTYLE& s) override
    {
        require(!s.dotSize || *s.dotSize >= 0);
        return {};
    }
    std::string setPalette(int, std::string_view name) override { return line(name); }
    std::string setDomain(const app::DOMAINCHOICE&) override { return {}; }
    std::string plotStation(std::optional<int>) override { return {}; }
    std::string setImportOverwrite(bool) override { return {}; }

private:
    static bool clean(const std::string& path)
    {
        require(path.find_first_of("\\\n\r#") == std::string::npos);
        return true;
    }
    static std::string given(const std::string& path)
    {
        require(!path.empty() && clean(path));
        return {};
    }
    static std::string line(std::string_view text)
    {
        require(text.find_first_of("\n\r#") == std::string_view::npos);
        return {};
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    RNullTarget target;
    (void)app::runCommands(std::string_view(reinterpret_cast<const char*>(data), size), "f", target,
                           [](std::string_view note) { require(note.starts_with("f:")); });
    return 0;
}
