# SPDX-License-Identifier: Apache-2.0
"""What is written about the collection: the modules' documentation beside what they take, the pages' examples, the package."""
import importlib
import json
import re
import shutil
import sys
import unittest

import yaml
from fleet_support import COLLECTION, EXAMPLES, FRUCTL, LIBRARIES, MODULES, SOURCE, FleetTest

PAGE = SOURCE / "docs/fleet.md"
# Of an option as the module takes it, what its documentation says of it too.
SAID = {"type": "str", "default": None, "choices": None, "required": False, "elements": None, "aliases": []}


def Blocks(pathPage, strKind):
    return [strBody for strOf, strBody in re.findall(r"^```(\w*)\n(.*?)^```$", pathPage.read_text(), re.M | re.S) if strOf == strKind]


class Docs(FleetTest):
    def Documented(self, strType, *asNames):
        dictDocs = json.loads(self.Good("ansible-doc", "--json", "--type", strType, *(f"bmcfru.fru.{strName}" for strName in asNames)))
        self.assertEqual(len(dictDocs), len(asNames))
        return {strName.rpartition(".")[2]: dictDoc for strName, dictDoc in dictDocs.items()}

    def AssertSame(self, strWhere, dictArguments, dictOptions):
        self.assertEqual(sorted(dictArguments), sorted(dictOptions), strWhere)
        for strName, dictArgument in dictArguments.items():
            for strKey, usual in SAID.items():
                self.assertEqual(dictOptions[strName].get(strKey, usual), dictArgument.get(strKey, usual), f"{strWhere}: {strName}: {strKey}")
            self.assertTrue(dictOptions[strName]["description"])
            self.AssertSame(f"{strWhere}: {strName}", dictArgument.get("options", {}), dictOptions[strName].get("suboptions", {}))

    def test_every_option_is_documented_as_the_module_takes_it(self):
        sys.path.insert(0, str(self.pathTemp / "collections"))
        self.addCleanup(sys.path.pop, 0)
        dictDocs = self.Documented("module", *MODULES)
        for strModule in MODULES:
            stModule = importlib.import_module(f"ansible_collections.bmcfru.fru.plugins.modules.{strModule}")
            self.AssertSame(strModule, stModule.ARGUMENTS, dictDocs[strModule]["doc"]["options"])
            self.assertEqual(dictDocs[strModule]["doc"]["requirements"], ["the Python package bmcfru (Debian's python3-bmcfru) on the managed host"])
            for strMember, dictReturn in dictDocs[strModule]["return"].items():
                self.assertTrue(dictReturn["description"] and dictReturn["type"] and dictReturn["returned"], f"{strModule}: {strMember}")

    def test_every_example_of_the_modules_is_a_task_that_ansible_understands(self):
        dictDocs = {**self.Documented("module", *MODULES), **self.Documented("lookup", "label_table")}
        listTasks = [dictTask for dictDoc in dictDocs.values() for dictTask in yaml.safe_load(dictDoc["examples"])]
        self.assertGreater(len(listTasks), 9)
        (self.pathTemp / "examples.yml").write_text(yaml.safe_dump([{"hosts": "all", "tasks": listTasks}]))
        self.Good("ansible-playbook", "-i", "localhost,", "--syntax-check", "examples.yml")

    def test_ansible_doc_shows_each(self):
        strList = self.Good("ansible-doc", "--list", "bmcfru.fru")
        for strModule in MODULES:
            self.assertIn(f"bmcfru.fru.{strModule}", strList)
        strShown = self.Good("ansible-doc", "-t", "module", "bmcfru.fru.fru_label")
        for strWord in ("BMCFRU.FRU.FRU_LABEL", "- labels", "- wait", "EXAMPLES:", "RETURN VALUES:", "- devices"):
            self.assertIn(f"{strWord}", strShown)

    def test_the_collection_has_the_version_of_the_library(self):
        strVersion = re.search(r"project\(\w+\s+VERSION (\S+)", (SOURCE / "CMakeLists.txt").read_text())[1]
        self.assertEqual(yaml.safe_load((COLLECTION / "galaxy.yml").read_text())["version"], strVersion)

    def test_yaml_is_tidy(self):
        if shutil.which("yamllint") is None:
            self.skipTest("yamllint is not installed")
        (self.pathTemp / "page").mkdir()
        for i, strBlock in enumerate(Blocks(PAGE, "yaml")):
            (self.pathTemp / f"page/{i}.yml").write_text("---\n" + strBlock)
        self.Good("yamllint", "--strict", "-c", COLLECTION / ".yamllint", COLLECTION, EXAMPLES, self.pathTemp / "page")

    def test_every_line_of_the_page_works(self):
        for strName in ("examples", "bindings"):
            (self.pathTemp / strName).symlink_to(SOURCE / strName)
        (self.pathTemp / "build").mkdir()
        (self.pathTemp / "build/native").symlink_to(LIBRARIES)
        asPlays = []
        for strBlock in Blocks(PAGE, "yaml"):
            asPlays.append(re.match(r"# (\S+\.yml)\n", strBlock)[1])
            (self.pathTemp / asPlays[-1]).write_text("---\n" + strBlock)
        strScript = "".join(Blocks(PAGE, ""))
        for strWord in ("ansible-galaxy", "ansible-doc", "--check --diff", "make-fleet 100"):
            self.assertIn(strWord, strScript)
        # The rest of the page is the same with fewer of them.
        strScript = strScript.replace("make-fleet 100", "make-fleet 2") + "".join(
            f"ansible-playbook -i build/fleet/try/hosts.yml --syntax-check {strPlay}\n" for strPlay in asPlays if strPlay not in strScript)
        self.Good("bash", "-exo", "pipefail", "-c", strScript, FRUCTL=FRUCTL, ANSIBLE_PYTHON_INTERPRETER="/usr/bin/python3")
        self.assertEqual((self.pathTemp / "build/fleet/try/c001-psu1.bin").stat().st_size, 256)

    def test_the_readmes_tasks_do_what_its_commands_do(self):
        self.Provision()
        dictTree = self.Tree(self.pathRoot)
        (strTasks,) = Blocks(SOURCE / "README.md", "yaml")
        listTasks = yaml.safe_load(strTasks)
        (self.pathTemp / "play.yml").write_text(yaml.safe_dump([{"hosts": "localhost", "gather_facts": False, "tasks": listTasks}]))
        strDone = self.Good("ansible-playbook", "-i", "localhost,", "-c", "local", "-e", "ansible_python_interpreter=/usr/bin/python3",
                            "play.yml", FRUCTL_ROOT=str(self.pathRoot))
        self.assertIn("ok=3    changed=2", strDone)
        self.assertEqual(self.Tree(self.pathRoot), dictTree)
        self.Good(FRUCTL, "--root", self.pathRoot, "read", "psu1", "-o", "same.bin")
        self.assertEqual((self.pathTemp / "image.bin").read_bytes(), (self.pathTemp / "same.bin").read_bytes())


if __name__ == "__main__":
    unittest.main()
