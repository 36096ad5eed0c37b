// node_forms reference|embed|standard: reads lines "<document><tab><result>", two paths, and
// answers each with a line when the result is written.

#include <iostream>
#include <map>
#include <string>

#include <MaterialXFormat/XmlIo.h>

#include <MaterialTranslation/NodeForms.h>

namespace
{

namespace mx = MaterialX;
namespace mt = vyr::MaterialTranslation;

const std::map<std::string, mt::NodeForm> forms = {
    {"reference", mt::NodeForm::Reference},
    {"embed", mt::NodeForm::Embed},
    {"standard", mt::NodeForm::Standard},
};

} // namespace

int main(int argc, char** argv)
{
    const mt::NodeForm form = forms.at(argc == 2 ? argv[1] : "");
    for (std::string line; std::getline(std::cin, line);)
    {
        const std::size_t tab = line.find('\t');
        const mx::DocumentPtr document = mx::createDocument();
        mx::readFromXmlFile(document, line.substr(0, tab));
        for (const mt::ValidationMessage& message : mt::applyNodeForm(document, form))
            std::cerr << message.path << ": " << message.text << '\n';
        mx::writeToXmlFile(document, line.substr(tab + 1));
        std::cout << "done" << std::endl;
    }
}
