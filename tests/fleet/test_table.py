# SPDX-License-Identifier: Apache-2.0
"""The lookup label_table beside the command line, which reads the same tables; and what it refuses."""
import importlib.util
import json
import unittest

from fleet_support import COLLECTION, FRUCTL, FleetTest

from ansible.errors import AnsibleLookupError

SPEC = importlib.util.spec_from_file_location("label_table", COLLECTION / "plugins/lookup/label_table.py")
LOOKUP = importlib.util.module_from_spec(SPEC)
SPEC.loader.exec_module(LOOKUP)

TABLES = {
    "plain": 'device,Product Serial Number,Product Asset Tag\npsu1,PS80241009001,A1\npsu2,PS80241009002,\n',
    "semicolons, and a byte order mark": '\ufeffdevice;Product Serial Number\r\npsu1;PS80241009001\r\n\r\npsu2;PS80241009002',
    "tabs": 'device\tProduct Asset Tag\npsu1\tA,1;2\n',
    "quotes": '"device","Product Asset Tag","Product Version"\n"psu1","A ""1"", 2","1;0"\npsu2,"",1.0\n',
    "a separator in quotes first": '"Product Asset Tag",device\n"a;b",psu1\n',
    "short lines": 'device,Product Serial Number,Product Asset Tag\npsu1,PS80241009001\npsu2,,A2\n',
    "one column": 'device,Product Asset Tag\npsu1,A1\n',
    "an array": '[{"device": "psu1", "Product Version": 25, "Product Asset Tag": null}, {"device": "psu2", "Product Version": "2.0"}]',
    "lines of JSON": '{"device": "psu1", "Product Version": 77}\n\n{"device": "psu2", "Product Asset Tag": "x"}\n',
}
REFUSED = {
    'device,Product Asset Tag\npsu1,"A1\n': "a quote is not closed",
    'device,Product Asset Tag\npsu1,"A1"x\n': "goes on behind its closing quote",
    'device,Product Asset Tag\npsu1,A1,A2\n': "3 cells, but the first line names 2 columns",
    'device,device\npsu1,A1\n': "stands there twice",
    '[{"device": "psu1", "Product Asset Tag": ["A1"]}]': "a text, a whole number or null",
    '[{"device": "psu1", "Product Version": 2.10}]': "a text, a whole number or null",
    '[{"device": "psu1", "Product Version": 98765432109876543210}]': "a text, a whole number or null",
    '[{"device": "psu1", "Product Version": true}]': "a text, a whole number or null",
    '{"device": "psu1"\n': "not JSON",
    '["psu1"]': "not an object",
}


# What the lookup is asked for, and what it answers: rows, or why not.
FLEET = "root,device,Product Serial Number\n/srv/c1,psu1,PS1\n/srv/c2/,psu1,PS2\n/srv/c1,,BB1\n"
HOSTS = "host,device,Product Serial Number\nh1,psu1,PS1\nh2,psu1,PS2\n"
DOUBLE = "device,Product Serial Number\npsu1,PS1\npsu2,PS1\n"
ASKED = [
    (FLEET, "root='/srv/../srv/c1', device='baseboard'",
     [{"where": "labels.csv:2", "device": "psu1", "root": "/srv/c1", "labels": {"Product Serial Number": "PS1"}},
      {"where": "labels.csv:4", "device": "baseboard", "root": "/srv/c1", "labels": {"Product Serial Number": "BB1"}}]),
    (FLEET, "root='/srv/c2', device='baseboard'",
     [{"where": "labels.csv:3", "device": "psu1", "root": "/srv/c2/", "labels": {"Product Serial Number": "PS2"}}]),
    (FLEET, "root='/srv/c3', device='baseboard'", []),
    (FLEET, "root='/srv/c1'", "labels.csv:4: the row names no device"),
    (HOSTS, "host='h2'", [{"where": "labels.csv:3", "device": "psu1", "labels": {"Product Serial Number": "PS2"}}]),
    (HOSTS, "root='/srv/c1'", "labels.csv:2: the column 'root' is missing or empty"),
    (DOUBLE, "", "labels.csv:3: 'PS1' as 'Product Serial Number' is given by labels.csv:2 too"),
    (DOUBLE, "unique=['Chassis Serial Number']",
     [{"where": f"labels.csv:{iLine}", "device": strDevice, "labels": {"Product Serial Number": "PS1"}} for iLine, strDevice in ((2, "psu1"), (3, "psu2"))]),
]


class Table(FleetTest):
    def test_every_form_of_a_table_says_what_it_says_to_the_command_line(self):
        self.Provision()
        pathTable = self.pathTemp / "labels.csv"
        for strName, strText in TABLES.items():
            with self.subTest(strName):
                pathTable.write_bytes(strText.encode())
                stDone = self.Run(FRUCTL, "--root", self.pathRoot, "--json", "label", "set", "--from", pathTable, "-n")
                listWanted = [(dictRow["device"], dictRow["labels"]) for dictRow in map(json.loads, stDone.stdout.splitlines())]
                self.assertTrue(listWanted, stDone.stderr)
                self.assertEqual([(dictRow["device"], dictRow["labels"]) for dictRow in LOOKUP.Rows(strText, "labels.csv")], listWanted)

    def test_what_the_command_line_refuses_is_refused_in_its_words(self):
        self.Provision()
        pathTable = self.pathTemp / "labels.csv"
        for strText, strWhy in REFUSED.items():
            with self.subTest(strText):
                pathTable.write_bytes(strText.encode())
                stDone = self.Run(FRUCTL, "--root", self.pathRoot, "label", "set", "--from", pathTable, "-n")
                self.assertEqual((stDone.returncode, strWhy in stDone.stderr), (3, True), stDone.stderr)
                with self.assertRaises(AnsibleLookupError) as stRaised:
                    list(LOOKUP.Rows(strText, str(pathTable)))
                self.assertEqual(f"fructl: {stRaised.exception}\n", stDone.stderr)

    def test_a_controller_is_given_its_rows(self):
        asTasks = []
        for i, (strText, strOptions, _) in enumerate(ASKED):
            pathTable = self.pathTemp / f"{i}/labels.csv"
            pathTable.parent.mkdir()
            pathTable.write_text(strText)
            asTasks.append({"ansible.builtin.copy": {"dest": f"{pathTable.parent}/rows.json", "content":
                                                     f"{{{{ query('bmcfru.fru.label_table', '{pathTable}', {strOptions}) | to_json }}}}"},
                            "register": f"r{i}", "ignore_errors": True})
        asTasks.append({"ansible.builtin.copy": {"dest": f"{self.pathTemp}/why.json",
                                                 "content": "{{ [" + ",".join(f"r{i}.msg | default('')" for i in range(len(ASKED))) + "] | to_json }}"}})
        (self.pathTemp / "play.yml").write_text(json.dumps([{"hosts": "localhost", "gather_facts": False, "tasks": asTasks}]))
        self.Good("ansible-playbook", "-i", "localhost,", "-c", "local", "-e", "ansible_python_interpreter=/usr/bin/python3", "play.yml")
        asWhy = json.loads((self.pathTemp / "why.json").read_text())
        for i, (strText, strOptions, wanted) in enumerate(ASKED):
            with self.subTest(strOptions, table=strText):
                if isinstance(wanted, str):
                    self.assertIn(wanted, asWhy[i])
                else:
                    self.assertEqual(json.loads((self.pathTemp / f"{i}/rows.json").read_text()), wanted)


if __name__ == "__main__":
    unittest.main()
