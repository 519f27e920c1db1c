# Completion of mep for fish. Commands, options, and files or words where an option wants them.

set -l commands show eval check query xml protect unprotect
set -l none "not __fish_seen_subcommand_from $commands"
set -l any "__fish_seen_subcommand_from $commands"
set -l texts '__fish_seen_subcommand_from show check query xml protect unprotect'

complete -c mep -f
complete -c mep -n "$none" -a show -d 'Print the elements of a definition text as a tree'
complete -c mep -n "$none" -a eval -d 'Evaluate an expression and print its value'
complete -c mep -n "$none" -a check -d 'Report the errors of definition texts'
complete -c mep -n "$none" -a query -d 'Print the elements or attributes that a path leads to'
complete -c mep -n "$none" -a xml -d 'Print a definition text as XML'
complete -c mep -n "$none" -a protect -d 'Encipher a definition text'
complete -c mep -n "$none" -a unprotect -d 'Decipher a protected definition text'

complete -c mep -s h -l help -d 'Print a summary and exit'
complete -c mep -n "$none" -l version -d 'Print the version and exit'
complete -c mep -n "$none" -l max-steps -x -d 'End an evaluation after so many steps'
complete -c mep -n "$none" -l max-memory -x -d 'End it when values need more bytes'
complete -c mep -n "$none" -l timeout -x -d 'End evaluations after so many seconds'
complete -c mep -n "$any" -s e -l encoding -x -a 'utf-8 windows-1252 latin-1 oem' -d 'Encoding of what is read and written'
complete -c mep -n "$texts" -F
complete -c mep -n '__fish_seen_subcommand_from show query eval' -s v -l var -x -d 'Set a variable: name=EXPR'
complete -c mep -n '__fish_seen_subcommand_from show check query xml' -l include-root -x -a '(__fish_complete_directories)' -d 'Included files must lie below this folder'
complete -c mep -n '__fish_seen_subcommand_from query' -s j -l json -d 'Print JSON'
complete -c mep -n '__fish_seen_subcommand_from xml' -l root -x -d 'Name of the root element'
complete -c mep -n '__fish_seen_subcommand_from xml' -l no-declaration -d 'No declaration, numeric references'
complete -c mep -n '__fish_seen_subcommand_from protect unprotect' -s o -l output -r -F -d 'Write to this file'
complete -c mep -n '__fish_seen_subcommand_from eval' -s s -l strict -d 'Unknown variables and assignments are errors'
complete -c mep -n '__fish_seen_subcommand_from eval' -s r -l raw -d 'Print a string without quotes'
complete -c mep -n '__fish_seen_subcommand_from eval' -s t -l type -d 'Print the type in front of the value'
