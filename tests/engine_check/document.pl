#!/usr/bin/perl
# Compares docs/engine-contract.md and sdk/tavl1.h with src/engine: document.pl ROOT
# Every function has a row with its arguments in their order, every member of a record one with its offset, every code one with
# its number; there are no others. tools/check-engine checks every function. sdk/tavl1.h and sdk/tavl1.def are what is made of
# them.
use strict;
use warnings;
use FindBin;
use lib "$FindBin::Bin/../../sdk";
use contract qw(read_contract slurp);

my ($root) = @ARGV;
die "usage: see the head of $0\n" unless @ARGV == 1;
my $contract = read_contract($root);
my $tables = $contract->{tables};
my ($checks, $bad) = (0, 0);

sub same {
  my ($what, $stated, $actual) = @_;
  $checks++;
  return if $stated eq $actual;
  $bad++;
  print "$what: the document has \"$stated\", src/engine has \"$actual\"\n";
}

my (%function_row, %record_rows);
for my $heading (keys %$tables) {
  for (@{ $tables->{$heading} }) {
    $function_row{$1} = $_ if $_->[0] =~ /^`(QUIVO_\w+)`$/;
    push @{ $record_rows{$heading} }, $_ if $_->[0] =~ /^\d+$/ && $_->[1] =~ /^`/;
  }
}

for my $function (@{ $contract->{functions} }) {
  my $row = delete $function_row{ $function->{name} };
  same($function->{name}, $row ? 'a row' : 'no row', 'a row');
  next unless $row;
  # A part may name other things behind its argument.
  my @stated = map { /^`(\w+)`/ ? $1 : () } split /; /, $row->[2];
  same("the arguments of $function->{name}", "@stated", join ' ', map { $_->{name} } @{ $function->{arguments} });
  same("the purpose of $function->{name}", length $row->[1] ? 'stated' : 'missing', 'stated');
}
same("the row of $_", 'a row', 'no row') for sort keys %function_row;

for my $record (@{ $contract->{records} }) {
  my $name = $record->{name};
  my $rows = delete $record_rows{$name} // [];
  my @actual = map { "$contract->{offset}{$name}{$_} $_" } @{ $record->{members} };
  same("the members of $name", join(', ', map { "$_->[0] " . $_->[1] =~ s/`//gr } @$rows), join ', ', @actual);
  my ($size) = slurp("$root/docs/engine-contract.md") =~ /^### `$name`\n\n(\d+) bytes\./m;
  same("the size of $name", $size // 'none', $contract->{size}{$name});
}
delete $record_rows{Results};
same("the table $_", 'a table', 'no record') for sort keys %record_rows;

my %code = map { ($_->[1] // '') =~ /^`(\w+)`$/ ? ($1 => $_->[0]) : () } @{ $tables->{Results} };
same("the code $_->{name}", delete $code{ $_->{name} } // 'none', $_->{value}) for @{ $contract->{codes} };
same("the code $_", 'a row', 'no code') for sort keys %code;

my @checks = glob "$root/sdk/check/*.cpp";
my $check = join '', map { slurp($_) } @checks;
same("the check of $_->{name}", $check =~ /\b$_->{name}\b/ ? 'there' : 'missing', 'there') for @{ $contract->{functions} };

my $made = qx('$root/sdk/generate' header);
die "the header cannot be made\n" if $?;
same('sdk/tavl1.h', slurp("$root/sdk/tavl1.h") eq $made ? 'up to date' : 'other text; make it anew with sdk/generate', 'up to date');

$made = qx('$root/cmake/engine_exports.pl' '$root/src/engine/functions.h' /dev/stdout);
die "the export list cannot be made\n" if $?;
same('sdk/tavl1.def', slurp("$root/sdk/tavl1.def") eq $made ? 'up to date' : 'other text; make it anew with cmake/engine_exports.pl', 'up to date');

die "nothing was compared\n" unless $checks > 100;
print "$checks comparisons, $bad differ\n";
exit($bad ? 1 : 0);
