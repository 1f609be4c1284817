# What the engine's contract consists of, read from where it is written: the functions and constants of src/engine/functions.h,
# the records of records.h, their places of layout.h, the codes of codes.h, the flags of the type library, the purposes
# and meanings of docs/engine-contract.md.
package contract;
use strict;
use warnings;
use Exporter qw(import);
our @EXPORT_OK = qw(read_contract slurp);

sub slurp {
  my ($path) = @_;
  open my $in, '<', $path or die "$path: $!\n";
  local $/;
  return scalar <$in>;
}

# kVerifiedWithRemarks becomes TAVL_VERIFIED_WITH_REMARKS, Flag_Sign_Pkcs7 TAVL_FLAG_SIGN_PKCS7.
sub constant_name {
  my ($name) = @_;
  $name =~ s/(?<=[a-z0-9])(?=[A-Z])/_/g if $name =~ s{^k(?=[A-Z])}{};
  return 'TAVL_' . uc $name;
}

# The constants of a header, each with the comment above it.
sub constants_of {
  my ($text) = @_;
  my @constants;
  while ($text =~ m{((?:^///[^\n]*\n)?)^constexpr (u?int32_t) (k\w+) = ([^;]+);}mg) {
    my ($comment, $type, $name, $value) = ($1, $2, $3, $4);
    $value = $1 if $value =~ /^static_cast<int32_t>\((\w+)\)$/;
    push @constants, { name => constant_name($name), type => $type, value => $value, about => $comment =~ m{^/// (.*)} ? $1 : '' };
  }
  return @constants;
}

sub functions_of {
  my ($text) = @_;
  my @functions;
  while ($text =~ /^(int32_t|void\*) (QUIVO_\w+)\(([^)]*)\);/mg) {
    my ($result, $name, $list) = ($1, $2, $3);
    $list =~ s/\s+/ /g;
    my @arguments = map { /^(.*?) ?(\w+)$/ or die "$name: $_\n"; { type => $1, name => $2 } } split /, /, $list;
    push @functions, { name => $name, result => $result, arguments => \@arguments };
  }
  return @functions;
}

# The records in their order, with the declarations of their members; those of an unnamed union share their place.
sub records_of {
  my ($text) = @_;
  my @records;
  while ($text =~ /^struct (\w+) \{\n(.*?)^\};/msg) {
    my ($name, $body) = ($1, $2);
    my $inner = '';
    # A structure without a name would be an extension of C++ in there.
    while ($body =~ s/^ *struct \{\n(.*?)^ *\} (\w+);\n/    ${name}_$2 $2;\n/ms) {
      my ($members, $member) = ($1, $2);
      $inner .= "typedef struct ${name}_$member {\n" . $members =~ s/^ +/  /mgr . "} ${name}_$member;\n\n";
    }
    my @members = $body =~ /^\s+[\w* ]*?(\w+)(?: = [^;]*)?;$/mg;
    push @records, { name => $name, inner => $inner, body => $body =~ s/ = [^;\n]*;/;/gr, members => \@members };
  }
  return @records;
}

# By the name of a record its size, and by the names of its members their offsets.
sub places_of {
  my ($text) = @_;
  my (%size, %offset);
  while ($text =~ /TAVL_LAYOUT\((\w+), (\d+),\s*(.*?)\);/sg) {
    my ($record, $bytes, $members) = ($1, $2, $3);
    $size{$record} = $bytes;
    $offset{$record}{$2} = $1 while $members =~ /TAVL_MEMBER\((\d+), (\w+)\)/g;
    @{ $offset{$record} }{ $2, $4 } = ($1, $3) while $members =~ /TAVL_LIST\((\d+), (\w+),\s*(\d+), (\w+)\)/g;
  }
  $size{$1} = $2 while $text =~ /sizeof\((\w+)\) == (\d+)/g;
  $offset{$1}{$2} = $3 while $text =~ /offsetof\((\w+), (\w+)\) == (\d+)/g;
  # Of members of members, the first place is theirs.
  while ($text =~ /offsetof\((\w+), (\w+)\.\w+\) == (\d+)/g) { $offset{$1}{$2} //= $3 }
  return (\%size, \%offset);
}

sub flags_of {
  my ($text) = @_;
  my @flags;
  while ($text =~ /typedef\s*\[[^\]]*helpstring\("([^"]*)"\)\]\s*enum\s+\w+\s*\{(.*?)\}\s*(\w+)\s*;/sg) {
    my ($about, $body, $name) = ($1, $2, $3);
    my @members;
    while ($body =~ /\[helpstring\("([^"]*)"\)\]\s*(\w+)\s*=\s*([^,\s]+)/g) {
      push @members, { about => $1, name => constant_name($2), value => $3 };
    }
    push @flags, { name => $name, about => $about, members => \@members };
  }
  return @flags;
}

# The rows of the tables of a document: for each first cell in backquotes the list of its rows' other cells, by the heading
# that they stand under.
sub tables_of {
  my ($text) = @_;
  my (%rows, $heading);
  for (split /\n/, $text) {
    $heading = $1 =~ s/`//gr if /^#+ (.*)/;
    my @cells = map { s/^\s+|\s+$//gr } split /(?<!\\)\|/ or next;
    push @{ $rows{$heading} }, [@cells[1 .. $#cells]] if /^\|/ && !/^\|-/;
  }
  return \%rows;
}

sub read_contract {
  my ($root) = @_;
  my $functions = slurp("$root/src/engine/functions.h");
  my ($size, $offset) = places_of(slurp("$root/src/engine/layout.h"));
  my $contract = {
    functions => [functions_of($functions)],
    constants => [constants_of($functions), constants_of(slurp("$root/src/engine/flags.h"))],
    codes => [constants_of(slurp("$root/src/engine/codes.h"))],
    records => [records_of(slurp("$root/src/engine/records.h"))],
    flags => [flags_of(slurp("$root/src/module/quivocom.idl"))],
    tables => tables_of(slurp("$root/docs/engine-contract.md")),
    size => $size,
    offset => $offset,
  };
  # A change of the sources' manner must not empty the contract unseen.
  my $declared = () = $functions =~ /\bQUIVO_\w+\(/g;
  die "src/engine/functions.h: not understood\n" unless @{ $contract->{functions} } == $declared && $declared;
  for (qw(constants codes records flags)) { die "the contract has no $_\n" unless @{ $contract->{$_} } }
  for my $record (@{ $contract->{records} }) {
    my $places = $offset->{ $record->{name} } or die "src/engine/layout.h lacks $record->{name}\n";
    for (@{ $record->{members} }) { die "src/engine/layout.h lacks $record->{name}.$_\n" unless defined $places->{$_} }
  }
  return $contract;
}

1;
